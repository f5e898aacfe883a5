#include "ui/usersink.h"

#include <QApplication>
#include <QMessageBox>

namespace molvera::ui {
namespace {

std::unique_ptr<QMessageBox> Box(QMessageBox::Icon icon, const QString& title, const QString& text,
                                 QMessageBox::StandardButtons buttons) {
    return std::make_unique<QMessageBox>(icon, title, text, buttons, QApplication::activeWindow());
}

}  // namespace

std::unique_ptr<QMessageBox> MessageBox(const QString& text, bool error) {
    return Box(error ? QMessageBox::Critical : QMessageBox::Information, QStringLiteral("Molvera"),
               text, QMessageBox::Ok);
}

std::unique_ptr<QMessageBox> QuestionBox(const QString& title, const QString& text) {
    return Box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No);
}

std::unique_ptr<QMessageBox> SaveChangesBox(const QString& text) {
    auto box = Box(QMessageBox::Warning, QStringLiteral("Molvera"), text,
                   QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    box->setDefaultButton(QMessageBox::Save);
    return box;
}

void DialogSink::Message(const QString& text, bool error) { MessageBox(text, error)->exec(); }

bool DialogSink::AskYesNo(const QString& title, const QString& text) {
    return QuestionBox(title, text)->exec() == QMessageBox::Yes;
}

SaveChangesAnswer DialogSink::AskSaveChanges(const QString& text) {
    switch (SaveChangesBox(text)->exec()) {
        case QMessageBox::Save:
            return SaveChangesAnswer::Save;
        case QMessageBox::Discard:
            return SaveChangesAnswer::Discard;
        default:
            return SaveChangesAnswer::Cancel;
    }
}

void DialogSink::Beep() { QApplication::beep(); }

}  // namespace molvera::ui
