#include "ui/fittingwindow.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace molvera::ui {

FittingWindow::FittingWindow(Project& project, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint),
      progress_(new QLabel(QStringLiteral("Starting\u2026"), this)),
      stop_(new QPushButton(QStringLiteral("Stop Fitting"), this)) {
    setWindowTitle(QStringLiteral("Fitting"));
    setObjectName(QStringLiteral("fittingWindow"));
    stop_->setObjectName(QStringLiteral("stopFittingButton"));
    progress_->setObjectName(QStringLiteral("fitProgressLabel"));
    progress_->setMinimumWidth(420);
    stop_->setMinimumSize(160, 40);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(progress_);
    layout->addWidget(stop_, 0, Qt::AlignHCenter);
    connect(stop_, &QPushButton::clicked, this, [&project] { project.StopRequested = true; });
}

void FittingWindow::ShowProgress(const QString& text) { progress_->setText(text); }

}  // namespace molvera::ui
