#include "ui/qthost.h"

#include <QCoreApplication>

#include "fileio/numtext.h"
#include "ui/fittingwindow.h"
#include "ui/mainwindow.h"
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

void QtHost::RedrawRegion() {
    ++redraws_;
    if (region_) region_->Redraw();
}

void QtHost::ShowRegionWindow() {
    ++redraws_;
    if (region_) region_->ShowRegion();
    Yield();
}

void QtHost::RecolourRegionButtons() {
    if (main_) main_->RecolourRegionButtons();
}

void QtHost::HidePeakEditor() {
    if (hidePeakEditor) hidePeakEditor();
}

void QtHost::HideRegionDialogs() {
    if (hideRegionDialogs) hideRegionDialogs();
}

void QtHost::Yield() { QCoreApplication::processEvents(); }

void QtHost::BeginFit() {
    if (fitting_) fitting_->show();
    if (main_) main_->setEnabled(false);
    if (region_) region_->setEnabled(false);
    if (enableDialogs) enableDialogs(false);
}

void QtHost::EndFit() {
    if (fitting_) fitting_->hide();
    if (main_) main_->setEnabled(true);
    if (region_) region_->setEnabled(true);
    if (enableDialogs) enableDialogs(true);
}

}  // namespace molvera::ui
