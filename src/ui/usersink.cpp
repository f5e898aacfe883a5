#include "ui/usersink.h"

#include <QApplication>
#include <QMessageBox>

namespace molvera::ui {

void DialogSink::Message(const QString& text, bool error) {
    if (error) {
        QMessageBox::critical(QApplication::activeWindow(), QStringLiteral("Molvera"), text);
    } else {
        QMessageBox::information(QApplication::activeWindow(), QStringLiteral("Molvera"), text);
    }
}

bool DialogSink::AskYesNo(const QString& title, const QString& text) {
    return QMessageBox::question(QApplication::activeWindow(), title, text,
                                 QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

SaveChangesAnswer DialogSink::AskSaveChanges(const QString& text) {
    switch (QMessageBox::warning(QApplication::activeWindow(), QStringLiteral("Molvera"), text,
                                 QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                 QMessageBox::Save)) {
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
