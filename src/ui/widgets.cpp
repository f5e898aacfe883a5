#include "ui/widgets.h"

#include <QAction>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>

namespace molvera::ui {

QString LowerCamel(const QString& word) {
    // An all-capital word is an abbreviation and goes all lower case.
    return word == word.toUpper() ? word.toLower() : word.left(1).toLower() + word.mid(1);
}

QString FromLatin1(const std::string& latin1) {
    return QString::fromLatin1(latin1.data(), static_cast<qsizetype>(latin1.size()));
}

std::string ToLatin1(const QString& text) { return text.toLatin1().toStdString(); }

namespace {

void SetInvalid(QLineEdit* box, bool invalid) {
    if (box->property("invalid").toBool() == invalid) return;
    box->setProperty("invalid", invalid);
    box->setStyleSheet(invalid ? QStringLiteral("QLineEdit { border: 2px solid red; }")
                               : QString());
}

}  // namespace

void MarkInvalidBox(QWidget& window, const std::string& field) {
    for (QLineEdit* box : window.findChildren<QLineEdit*>()) {
        const bool invalid = !field.empty() && box->objectName() == QString::fromStdString(field);
        SetInvalid(box, invalid);
        if (invalid)
            QObject::connect(
                box, &QLineEdit::textEdited, box, [box] { SetInvalid(box, false); },
                Qt::SingleShotConnection);
    }
}

QLineEdit* NamedBox(QWidget* parent, const QString& name, int width) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setFixedWidth(width);
    return box;
}

void SetBoxText(QLineEdit* box, const std::string& text) {
    const QString q = FromLatin1(text);
    if (box->text() == q) return;
    box->setText(q);
    box->setCursorPosition(0);
}

QPushButton* NamedButton(QWidget* parent, const QString& caption, const QString& name) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

void ShowOrHide(QWidget& window, bool visible) {
    if (visible) {
        window.show();
        window.raise();
    } else {
        window.hide();
    }
}

void AddEditMenu(QMenuBar& bar) {
    QMenu* edit = bar.addMenu(QStringLiteral("Edit"));
    edit->setObjectName(QStringLiteral("editMenu"));
    QAction* undo = edit->addAction(QStringLiteral("Undo"));
    undo->setObjectName(QStringLiteral("undoAction"));
    undo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    QAction* redo = edit->addAction(QStringLiteral("Redo"));
    redo->setObjectName(QStringLiteral("redoAction"));
    redo->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
    undo->setEnabled(false);
    redo->setEnabled(false);
}

}  // namespace molvera::ui
