// Molvera, the desktop program: `molvera [FILE...]` opens projects and imports instrument
// files named on the command line.
#include <string>
#include <vector>

#include <QFile>
#include <QStringList>

#include "session/recovery.h"
#include "ui/application.h"
#include "ui/gui.h"
#include "ui/usersink.h"

int main(int argc, char** argv) {
    molvera::ui::Application app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Molvera"));
    molvera::ui::DialogSink sink;
    molvera::ui::QtFileChooser chooser;
    molvera::ui::Gui gui(sink, chooser);
    gui.Start("default.opa", molvera::RecoveryFolder());
    std::vector<std::string> files;
    for (const QString& arg : QApplication::arguments().mid(1))
        files.push_back(QFile::encodeName(arg).toStdString());
    gui.OpenFiles(files);
    return QApplication::exec();
}
