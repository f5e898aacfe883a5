#pragma once
// A running program with a recording message sink and a scripted file chooser, and
// helpers that find a window's controls by their object names.

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
#include <QPushButton>

#include "session/backgroundform.h"
#include "support/paths.h"
#include "ui/filechooser.h"
#include "ui/gui.h"
#include "ui/mainwindow.h"
#include "ui/regionwindow.h"
#include "ui/usersink.h"

namespace molvera::test {

/// The child of `parent` with this object name (a failure when there is none).
template <class W = QWidget>
W* Child(QObject& parent, const char* name) {
    W* found = parent.findChild<W*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}
inline void Type(QObject& window, const char* box, const QString& text) {
    if (auto* edit = Child<QLineEdit>(window, box)) edit->setText(text);
}
inline std::string Text(QObject& window, const char* box) {
    auto* edit = Child<QLineEdit>(window, box);
    return edit ? edit->text().toStdString() : "";
}
inline void Click(QObject& window, const char* button) {
    if (auto* b = Child<QAbstractButton>(window, button)) b->click();
}

/// Records messages and beeps; answers questions from a script (No when empty).
class RecordingSink : public ui::UserSink {
public:
    std::vector<std::string> messages;
    std::vector<std::string> questions;
    std::deque<bool> answers;
    int beeps = 0;
    int errors = 0;  ///< messages shown as errors
    /// The answer to "Save changes to ...?" (the question is recorded in `questions`).
    SaveChangesAnswer saveAnswer = SaveChangesAnswer::Discard;
    void Message(const QString& text, bool error) override {
        messages.push_back(text.toStdString());
        errors += error ? 1 : 0;
    }
    bool AskYesNo(const QString& title, const QString& text) override {
        questions.push_back(title.toStdString() + "|" + text.toStdString());
        const bool a = !answers.empty() && answers.front();
        if (!answers.empty()) answers.pop_front();
        return a;
    }
    SaveChangesAnswer AskSaveChanges(const QString& text) override {
        questions.push_back(text.toStdString());
        return saveAnswer;
    }
    void Beep() override { ++beeps; }
};

/// Hands out scripted paths ("" cancels) and records every dialog it was asked for.
class ScriptedChooser : public ui::FileChooser {
public:
    struct Request {
        bool save;
        std::string title, name;  ///< the proposed name
    };
    std::deque<std::string> paths;
    std::vector<Request> requests;
    QString OpenFile(const QString& t, const QString&, const QString& n) override {
        return Next(false, t, n);
    }
    QString SaveFile(const QString& t, const QString&, const QString& n) override {
        return Next(true, t, n);
    }

private:
    QString Next(bool save, const QString& t, const QString& n) {
        requests.push_back({save, t.toStdString(), n.toStdString()});
        const QString p = paths.empty() ? QString() : QString::fromStdString(paths.front());
        if (!paths.empty()) paths.pop_front();
        return p;
    }
};

/// The program started with the repository's default.opa.
class GuiTest : public ::testing::Test {
protected:
    void SetUp() override {
        gui = std::make_unique<ui::Gui>(sink, chooser);
        gui->Start(std::string(MOLVERA_SOURCE_DIR) + "/default.opa");
    }
    Project& project() { return gui->project(); }
    ui::MainWindow& main() { return gui->mainWindow(); }
    ui::RegionWindow& region() { return gui->regionWindow(); }

    /// Runs a region window menu item by its name.
    void Menu(const char* item) {
        QAction* a = region().Action(QString::fromLatin1(item));
        ASSERT_NE(a, nullptr) << item;
        a->trigger();
    }

    /// Imports the bundled C1s spectrum into the current region through the menu.
    std::string ImportSample() {
        const std::string path = DataFile("real/lg4x/C1s_sample.csv");
        chooser.paths.push_back(path);
        Menu("importAsciiAction");
        return path;
    }

    /// A Shirley background over the whole current region, through the dialog logic.
    void GiveBackground() {
        BackgroundForm form;
        ShowBackgroundDialog(project(), form);
        ASSERT_TRUE(AcceptBackground(project(), gui->host(), form));
    }

    /// The sample with a background and `peaks` peaks added through the menu.
    void SampleWithPeaks(int peaks) {
        ImportSample();
        GiveBackground();
        for (int k = 0; k < peaks; ++k) Menu("addPeakAction");
    }

    RecordingSink sink;
    ScriptedChooser chooser;
    std::unique_ptr<ui::Gui> gui;
};

}  // namespace molvera::test
