// Molvera, the desktop program.
#include "ui/application.h"
#include "ui/gui.h"
#include "ui/usersink.h"

int main(int argc, char** argv) {
    molvera::ui::Application app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Molvera"));
    molvera::ui::DialogSink sink;
    molvera::ui::QtFileChooser chooser;
    molvera::ui::Gui gui(sink, chooser);
    gui.Start("default.opa");
    return QApplication::exec();
}
