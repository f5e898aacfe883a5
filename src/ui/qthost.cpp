#include "ui/qthost.h"

#include <algorithm>

#include <QCoreApplication>
#include <QGuiApplication>

#include "base/numtext.h"
#include "model/project.h"
#include "session/fitcommands.h"
#include "spectral/warnings.h"
#include "ui/fittingwindow.h"
#include "ui/mainwindow.h"
#include "ui/plotwidget.h"
#include "ui/regionwindow.h"
#include "ui/usersink.h"
#include "ui/widgets.h"

namespace molvera::ui {

void QtHost::Attach(MainWindow* main, RegionWindow* region, FittingWindow* fitting) {
    main_ = main;
    region_ = region;
    fitting_ = fitting;
}

void QtHost::Show(const Status& status) {
    sink_.Message(QString::fromStdString(status.Text()), !status.ok());
}

void QtHost::Show(const std::string& text) { sink_.Message(QString::fromStdString(text), false); }

void QtHost::ShowError(const std::string& text) {
    sink_.Message(QString::fromStdString(text), true);
}

void QtHost::ShowOutcome(const Status& outcome, const std::string& done,
                         const std::string& failed) {
    sink_.Message(QString::fromStdString(outcome ? done : failed), !outcome);
}

bool QtHost::AskYesNo(const std::string& title, const std::string& text) {
    return sink_.AskYesNo(QString::fromStdString(title), QString::fromStdString(text));
}

SaveChangesAnswer QtHost::AskSaveChanges(const std::string& text) {
    return sink_.AskSaveChanges(QString::fromStdString(text));
}

void QtHost::Beep() { sink_.Beep(); }

void QtHost::ChiSquareTextChanged(int region) {
    if (!main_) return;
    if (region == kTotalBox) {
        main_->SetTotalText(QString::fromStdString(MainTexts().totalChiSquare));
    } else {
        main_->SetChiText(region, QString::fromStdString(MainTexts().chiSquare[region]));
    }
}

void QtHost::PeakButtonsChanged(int region) {
    if (!main_) return;
    for (int k = 0; k < kMaxPeaksPerRegion; ++k) {
        const int index = PeakButtonIndex(region, k);
        const PeakButtonText& button = MainTexts().peakButtons[index];
        main_->SetPeakButton(index, QString::fromStdString(button.caption), button.enabled);
    }
}

void QtHost::DescriptionChanged(const std::string& latin1) {
    if (main_) main_->SetDescription(QString::fromStdString(Latin1ToUtf8(latin1)));
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

void QtHost::CurvesChanged() {
    ++redraws_;
    RequestPlotRedraw();
    CheckRegion();
}

void QtHost::RegionInView() {
    ++redraws_;
    if (region_) region_->ShowRegion(false);
    RequestPlotRedraw();
    CheckRegion();
    Yield();
}

void QtHost::RegionListChanged() {
    if (main_) main_->RecolourRegionButtons();
}

void QtHost::HidePeakEditor() {
    if (hidePeakEditor) hidePeakEditor();
}

void QtHost::HideRegionDialogs() {
    HidePeakEditor();
    if (hideRegionDialogs) hideRegionDialogs();
    if (region_) region_->Plot()->ClearReadout();  // another region is chosen
}

void QtHost::ProjectCleared() {
    SessionHost::ProjectCleared();
    if (region_) region_->Plot()->ClearReadout();
}

void QtHost::PeakDeleted(int) { HidePeakEditor(); }

void QtHost::RegionDataDeleted() { HideRegionDialogs(); }

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
        // 25 frames a second at most, as the fitting window's texts: a fit moves too fast
        // to follow any closer, and each paint is time the fit waits.
        constexpr qint64 kFitFrameMs = 40;
        paintGapMs_ = std::max(kFitFrameMs, 10 * timer.elapsed());
        sincePaint_.restart();
    }
    if (redrawPending_ && (!sincePaint_.isValid() || sincePaint_.elapsed() >= paintGapMs_))
        RequestPlotRedraw();
}

void QtHost::FitStarted() {
    fitRunning_ = true;
    sinceProgress_.invalidate();
    if (fitting_) fitting_->BeginFit();
    if (main_) main_->setEnabled(false);
    if (region_) region_->SetCommandsEnabled(false);
    if (enableDialogs) enableDialogs(false);
}

void QtHost::FitProgressed(const FitProgress& progress) {
    // Every step goes into the sparkline; the window is repainted at most every 40 ms:
    // more often would cost the fit time and nobody can read it.
    constexpr qint64 kProgressGapMs = 40;
    if (!fitting_) return;
    const bool show = !sinceProgress_.isValid() || sinceProgress_.elapsed() >= kProgressGapMs;
    if (show) sinceProgress_.restart();
    fitting_->Progress(progress, show);
}

void QtHost::ShowFitSummary(const FitSummary& summary) {
    const QString text = FromLatin1(FitSummaryText(summary));
    if (region_) region_->SetFitSummary(text);
    if (fitting_) fitting_->ShowSummary(text);
}

void QtHost::ShowWarnings(const std::vector<std::string>& warnings) {
    if (region_) region_->SetWarning(FromLatin1(WarningLine(warnings)));
}

void QtHost::CheckRegion() {
    if (!fitRunning_) ShowWarnings(RegionWarnings(project_, project_.CurrentRegion));
}

void QtHost::FitEnded() {
    fitRunning_ = false;
    if (redrawPending_) RequestPlotRedraw();
    CheckRegion();
    if (fitting_) fitting_->EndFit();
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
