#include "ui/application.h"

#include <QEvent>

namespace molvera::ui {
namespace {

bool IsUserInput(const QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::Drop:
            return true;
        default:
            return false;
    }
}

}  // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {}

Application* Application::Instance() {
    return qobject_cast<Application*>(QCoreApplication::instance());
}

bool Application::notify(QObject* receiver, QEvent* event) {
    if (!IsUserInput(event)) return QApplication::notify(receiver, event);
    // A key press travels on from a child to its parent window through notify: only
    // the outermost delivery counts.
    struct Depth {
        int& d;
        explicit Depth(int& depth) : d(++depth) {}
        ~Depth() { --d; }
    } depth(depth_);
    const bool handled = QApplication::notify(receiver, event);
    if (depth_ == 1 && afterInput) afterInput();
    return handled;
}

}  // namespace molvera::ui
