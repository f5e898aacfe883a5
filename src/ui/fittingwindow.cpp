#include "ui/fittingwindow.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace molvera::ui {

FittingWindow::FittingWindow(Project& project, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint),
      stop_(new QPushButton(QStringLiteral("Stop Fitting"), this)) {
    setWindowTitle(QStringLiteral("Fitting"));
    setObjectName(QStringLiteral("fittingWindow"));
    stop_->setObjectName(QStringLiteral("stopFittingButton"));
    stop_->setMinimumSize(160, 40);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(stop_);
    connect(stop_, &QPushButton::clicked, this, [&project] { project.StopRequested = true; });
}

}  // namespace molvera::ui
