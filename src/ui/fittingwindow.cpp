#include "ui/fittingwindow.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/widgets.h"

namespace molvera::ui {
namespace {

/// The chi-square against the step, as a line in a small framed box.
class Sparkline : public QWidget {
public:
    Sparkline(const FitTrace& trace, QWidget* parent) : QWidget(parent), trace_(trace) {
        setObjectName(QStringLiteral("chiSquareSparkline"));
        setMinimumHeight(70);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().base());
        painter.setPen(palette().mid().color());
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
        constexpr int kMargin = 6;
        const std::vector<FitTrace::Point> line =
            trace_.Polyline(width() - 2 * kMargin, height() - 2 * kMargin);
        if (line.empty()) return;
        QPainterPath path(QPointF(line[0].x, line[0].y));
        for (const FitTrace::Point& p : line) path.lineTo(p.x, p.y);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(kMargin, kMargin);
        painter.setPen(QPen(QColor(0, 114, 178), 1.5));
        painter.drawPath(path);
        painter.setBrush(QColor(213, 94, 0));
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(QPointF(line.back().x, line.back().y), 3, 3);
    }

private:
    const FitTrace& trace_;
};

}  // namespace

FittingWindow::FittingWindow(Project& project, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint),
      project_(project),
      progress_(new QLabel(QStringLiteral("Starting\u2026"), this)),
      sparkline_(new Sparkline(trace_, this)),
      summary_(new QLabel(this)),
      stop_(new QPushButton(QStringLiteral("Stop Fitting"), this)) {
    setWindowTitle(QStringLiteral("Fitting"));
    setObjectName(QStringLiteral("fittingWindow"));
    stop_->setObjectName(QStringLiteral("stopFittingButton"));
    progress_->setObjectName(QStringLiteral("fitProgressLabel"));
    summary_->setObjectName(QStringLiteral("fitSummaryLabel"));
    summary_->setWordWrap(true);
    summary_->setMinimumHeight(2 * summary_->fontMetrics().lineSpacing());
    progress_->setMinimumWidth(460);
    stop_->setMinimumSize(160, 40);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(progress_);
    layout->addWidget(sparkline_, 1);
    layout->addWidget(summary_);
    layout->addWidget(stop_, 0, Qt::AlignHCenter);
    connect(stop_, &QPushButton::clicked, this, [this] {
        if (running_)
            project_.StopRequested = true;
        else
            hide();
    });
}

void FittingWindow::BeginFit() {
    running_ = true;
    trace_.Clear();
    progress_->setText(QStringLiteral("Starting\u2026"));
    summary_->clear();
    stop_->setText(QStringLiteral("Stop Fitting"));
    sparkline_->update();
    show();
    raise();
}

void FittingWindow::Progress(const FitProgress& progress, bool show) {
    trace_.Add(progress.chiSquare);
    last_ = progress;
    if (!show) return;
    progress_->setText(FromLatin1(FitProgressText(progress)));
    sparkline_->update();
}

void FittingWindow::EndFit() {
    running_ = false;
    stop_->setText(QStringLiteral("Close"));
    if (trace_.Size() > 0) progress_->setText(FromLatin1(FitProgressText(last_)));
    sparkline_->update();
}

void FittingWindow::ShowSummary(const QString& text) { summary_->setText(text); }

}  // namespace molvera::ui
