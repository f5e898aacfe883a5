#pragma once
// Where the windows talk to the user: message boxes, Yes/No questions and the beep.
// The program uses real dialogs; tests put a recorder in their place.

#include <memory>

#include <QString>

#include "session/sessionhost.h"

class QMessageBox;
class QWidget;

namespace molvera::ui {

/// Modal messages, questions and the beep, behind one replaceable interface.
class UserSink {
public:
    virtual ~UserSink() = default;
    /// A modal message box with an OK button; `error`: with the error icon, otherwise the
    /// information icon.
    virtual void Message(const QString& text, bool error) = 0;
    /// A modal Yes/No question; true for Yes.
    virtual bool AskYesNo(const QString& title, const QString& text) = 0;
    /// A modal Save / Discard / Cancel question about unsaved changes.
    virtual SaveChangesAnswer AskSaveChanges(const QString& text) = 0;
    /// The system beep.
    virtual void Beep() = 0;
};

/// The boxes DialogSink shows, built over the active window but not yet shown: a message
/// (error or information icon, OK), a Yes/No question, and Save / Discard / Cancel.
std::unique_ptr<QMessageBox> MessageBox(const QString& text, bool error);
std::unique_ptr<QMessageBox> QuestionBox(const QString& title, const QString& text);
std::unique_ptr<QMessageBox> SaveChangesBox(const QString& text);

/// QMessageBox and QApplication::beep.
class DialogSink : public UserSink {
public:
    void Message(const QString& text, bool error) override;
    bool AskYesNo(const QString& title, const QString& text) override;
    SaveChangesAnswer AskSaveChanges(const QString& text) override;
    void Beep() override;
};

}  // namespace molvera::ui
