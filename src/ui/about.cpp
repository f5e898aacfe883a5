#include "ui/about.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "base/version.h"

namespace molvera::ui {

namespace {

// The LICENSE file, compiled in as a resource.
QString LicenceText() {
    QFile file(QStringLiteral(":/molvera/LICENSE"));
    if (!file.open(QIODevice::ReadOnly)) return QStringLiteral("MIT License. See LICENSE.");
    return QString::fromUtf8(file.readAll()).trimmed();
}

QDialog* MakeAboutDialog(QWidget& window) {
    auto* dialog = new QDialog(&window);
    dialog->setObjectName(QStringLiteral("aboutDialog"));
    dialog->setWindowTitle(QStringLiteral("About Molvera"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);

    auto* icon = new QLabel(dialog);
    icon->setPixmap(QIcon(QStringLiteral(":/molvera/molvera.svg")).pixmap(64, 64));
    auto* title = new QLabel(
        QStringLiteral("<h2>Molvera %1</h2>").arg(QString::fromLatin1(ProgramVersion())), dialog);
    title->setObjectName(QStringLiteral("aboutTitle"));
    auto* what =
        new QLabel(QStringLiteral("Peak fitting for X-ray photoelectron spectra."), dialog);
    auto* qt = new QLabel(QStringLiteral("Qt %1 (built with %2)")
                              .arg(QString::fromLatin1(qVersion()), QStringLiteral(QT_VERSION_STR)),
                          dialog);
    auto* heading = new QVBoxLayout;
    for (QLabel* label : {title, what, qt}) heading->addWidget(label);
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(heading, 1);

    auto* licence = new QPlainTextEdit(LicenceText(), dialog);
    licence->setObjectName(QStringLiteral("licenceText"));
    licence->setReadOnly(true);
    licence->setLineWrapMode(QPlainTextEdit::NoWrap);
    licence->setMinimumSize(600, 340);
    auto* note = new QLabel(
        QStringLiteral("See LICENSE, and THIRD-PARTY.md for the libraries Molvera uses."), dialog);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);

    auto* layout = new QVBoxLayout(dialog);
    layout->addLayout(top);
    layout->addWidget(licence);
    layout->addWidget(note);
    layout->addWidget(buttons);
    return dialog;
}

}  // namespace

QWidget* ShowAboutDialog(QWidget& window) {
    auto* dialog = window.findChild<QDialog*>(QStringLiteral("aboutDialog"));
    if (!dialog) dialog = MakeAboutDialog(window);
    dialog->show();
    dialog->raise();
    return dialog;
}

void AddHelpMenu(QMenuBar& bar, QWidget& window) {
    QMenu* help = bar.addMenu(QStringLiteral("Help"));
    help->setObjectName(QStringLiteral("helpMenu"));
    QAction* about = help->addAction(QStringLiteral("About Molvera"));
    about->setObjectName(QStringLiteral("aboutAction"));
    QObject::connect(about, &QAction::triggered, &window, [&window] { ShowAboutDialog(window); });
}

}  // namespace molvera::ui
