// Molvera, the desktop program: `molvera [FILE...]` opens projects and imports instrument
// files named on the command line.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <QFile>
#include <QIcon>
#include <QStringList>

#include "base/version.h"
#include "fileio/optionfile.h"
#include "session/recovery.h"
#include "ui/application.h"
#include "ui/gui.h"
#include "ui/usersink.h"

namespace {

// --help and --version are answered before any window is made, so they work without a
// display (the man page is made from them at build time).
bool AnsweredOption(int argc, char** argv) {
    if (argc != 2) return false;
    if (!std::strcmp(argv[1], "--version")) {
        std::printf("molvera %s\n", molvera::ProgramVersion());
        return true;
    }
    if (std::strcmp(argv[1], "--help") && std::strcmp(argv[1], "-h")) return false;
    std::printf(
        "Usage: molvera [FILE...]\n"
        "Fit peaks in X-ray photoelectron spectra: the desktop program.\n\n"
        "Each FILE is opened in turn: a Molvera project (.xps, recognised by its header) as\n"
        "Open XPS opens it; an instrument file is imported into the first empty region in\n"
        "the format its extension names (.vms/.npl VAMAS, .des Kratos, .dat Leybold, .asc\n"
        "Phi, .txt/.csv/.xy two-column text).\n\n"
        "Options:\n"
        "  -h, --help     show this help and exit\n"
        "      --version  show the version and exit\n\n"
        "The fitting options are read at start-up from default.opa in the working directory,\n"
        "else from $XDG_CONFIG_HOME/molvera (default ~/.config/molvera), else from %s.\n"
        "Unsaved work is copied every minute to $XDG_STATE_HOME/molvera (default\n"
        "~/.local/state/molvera) and offered again after a crash.\n\n"
        "molvera-cli runs the same commands without windows; see molvera-cli --help.\n",
        molvera::InstalledDataDir().c_str());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (AnsweredOption(argc, argv)) return 0;
    molvera::ui::Application app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Molvera"));
    QApplication::setApplicationVersion(QString::fromLatin1(molvera::ProgramVersion()));
    QGuiApplication::setDesktopFileName(QStringLiteral("io.github.molvera.Molvera"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/molvera/molvera.svg")));
    molvera::ui::DialogSink sink;
    molvera::ui::QtFileChooser chooser;
    molvera::ui::Gui gui(sink, chooser);
    gui.Start(molvera::FindDefaultOptions(), molvera::RecoveryFolder());
    std::vector<std::string> files;
    for (const QString& arg : QApplication::arguments().mid(1))
        files.push_back(QFile::encodeName(arg).toStdString());
    gui.OpenFiles(files);
    return QApplication::exec();
}
