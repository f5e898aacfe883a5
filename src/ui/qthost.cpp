#include "ui/qthost.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <algorithm>

#include "base/numtext.h"
#include "ui/fittingwindow.h"
#include "ui/mainwindow.h"
#include "ui/plotwidget.h"
#include "ui/regionwindow.h"
#include "ui/usersink.h"

namespace molvera::ui {

void QtHost::Attach(MainWindow* main, RegionWindow* region, FittingWindow* fitting) {
    main_ = main;
    region_ = region;
    fitting_ = fitting;
}

void QtHost::Message(const std::string& text) { sink_.Message(QString::fromStdString(text)); }

bool QtHost::AskYesNo(const std::string& title, const std::string& text) {
    return sink_.AskYesNo(QString::fromStdString(title), QString::fromStdString(text));
}

void QtHost::Beep() { sink_.Beep(); }

void QtHost::SetRegionChiText(int region, const std::string& text) {
    if (main_) main_->SetChiText(region, QString::fromStdString(text));
}

void QtHost::SetTotalChiText(const std::string& text) {
    if (main_) main_->SetTotalText(QString::fromStdString(text));
}

void QtHost::SetPeakButton(int index, const std::string& caption, bool enabled) {
    if (main_) main_->SetPeakButton(index, QString::fromStdString(caption), enabled);
}

void QtHost::SetDescriptionText(const std::string& text) {
    if (main_) main_->SetDescription(QString::fromStdString(Latin1ToUtf8(text)));
}

void QtHost::RequestPlotRedraw() {
    if (!region_) return;
    if (fitRunning_ && sincePaint_.isValid() && sincePaint_.elapsed() < paintGapMs_) {
        redrawPending_ = true;
        return;
    }
    redrawPending_ = false;
    region_->Redraw();
}

void QtHost::RedrawRegion() {
    ++redraws_;
    RequestPlotRedraw();
}

void QtHost::ShowRegionWindow() {
    ++redraws_;
    if (region_) region_->ShowRegion(false);
    RequestPlotRedraw();
    Yield();
}

void QtHost::RecolourRegionButtons() {
    if (main_) main_->RecolourRegionButtons();
}

void QtHost::HidePeakEditor() {
    if (hidePeakEditor) hidePeakEditor();
}

void QtHost::HideRegionDialogs() {
    HidePeakEditor();
    if (hideRegionDialogs) hideRegionDialogs();
}

void QtHost::Yield() {
    if (beforeYield) beforeYield();
    // A fit yields after every parameter step; input and paints are looked at every
    // few milliseconds, which keeps Stop prompt and the fit fast.
    constexpr qint64 kYieldGapMs = 5;
    if (fitRunning_ && sinceYield_.isValid() && sinceYield_.elapsed() < kYieldGapMs) return;
    sinceYield_.restart();
    const int paintsBefore = region_ ? region_->Plot()->PaintCount() : 0;
    QElapsedTimer timer;
    timer.start();
    QCoreApplication::processEvents();
    if (region_ && region_->Plot()->PaintCount() != paintsBefore) {
        constexpr qint64 kRefreshMs = 16;
        paintGapMs_ = std::max(kRefreshMs, 10 * timer.elapsed());
        sincePaint_.restart();
    }
    if (redrawPending_ && (!sincePaint_.isValid() || sincePaint_.elapsed() >= paintGapMs_))
        RequestPlotRedraw();
}

void QtHost::BeginFit() {
    fitRunning_ = true;
    if (fitting_) fitting_->show();
    if (main_) main_->setEnabled(false);
    if (region_) region_->SetCommandsEnabled(false);
    if (enableDialogs) enableDialogs(false);
}

void QtHost::EndFit() {
    fitRunning_ = false;
    if (redrawPending_) RequestPlotRedraw();
    if (fitting_) fitting_->hide();
    if (main_) main_->setEnabled(true);
    if (region_) region_->SetCommandsEnabled(true);
    if (enableDialogs) enableDialogs(true);
}

void QtHost::BeginBusy() {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    if (main_) main_->setEnabled(false);
    if (region_) region_->setEnabled(false);
    if (enableDialogs) enableDialogs(false);
}

void QtHost::EndBusy() {
    QGuiApplication::restoreOverrideCursor();
    if (main_) main_->setEnabled(true);
    if (region_) region_->setEnabled(true);
    if (enableDialogs) enableDialogs(true);
}

}  // namespace molvera::ui
