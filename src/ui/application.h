#pragma once
// The application object: it sees every user input and says when one has been handled
// completely, which is when a command has finished and the undo history records a step.

#include <functional>

#include <QApplication>

namespace molvera::ui {

class Application : public QApplication {
    Q_OBJECT
public:
    Application(int& argc, char** argv);

    /// Called after a click, a key press or a drop has been handled, and everything it
    /// started (a whole fit, a file dialog) has ended.
    std::function<void()> afterInput;

    /// How many user inputs are being handled now: 1 inside a menu command, more when an
    /// input arrives while another one's command runs (a click during a fit).
    int InputDepth() const { return depth_; }

    /// The running Application, or null when the program runs on a plain QApplication.
    static Application* Instance();

    bool notify(QObject* receiver, QEvent* event) override;

private:
    int depth_ = 0;
};

}  // namespace molvera::ui
