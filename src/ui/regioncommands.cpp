// The region window's menu commands.
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QPrintDialog>
#include <QPrinter>

#include "base/messages.h"
#include "fileio/exports.h"
#include "fileio/regionparams.h"
#include "session/fitcommands.h"
#include "spectral/regionedit.h"
#include "spectral/warnings.h"
#include "ui/filechooser.h"
#include "ui/plotwidget.h"
#include "ui/printing.h"
#include "ui/qthost.h"
#include "ui/regionwindow.h"

namespace molvera::ui {

void RegionWindow::Import(const ImportFormat& format) {
    const std::string path = files_.Open(format.title, format.filter);
    if (!path.empty()) ImportFrom(format, path);
}

void RegionWindow::ImportFrom(const ImportFormat& format, const std::string& path) {
    project_.FileName = path;
    const ImportResult result = ImportFile(project_, host_, format, path);
    for (const Status& message : result.Messages()) host_.Show(message);
    std::vector<std::string> warnings = result.warnings;
    for (std::string& w : RegionWarnings(project_, project_.CurrentRegion))
        warnings.push_back(std::move(w));
    if (result.status) host_.ShowWarnings(warnings);
    if (result.status && fileUsed) fileUsed(path);
}

bool RegionWindow::SaveDialog(std::string_view title, std::string_view filter,
                              const char* extension, std::string& path) {
    path = files_.Save(title, filter, extension);
    if (path.empty()) {
        host_.ShowError(msg::kErrorSavingFile);
        return false;
    }
    project_.FileName = path;
    return true;
}

void RegionWindow::ExportSpectrumCommand() {
    if (!IsSet(project_.Current().HasData)) return;
    std::string path;
    if (!SaveDialog("Export Spectral and Fitted data in Ascii format", "Data Files (*.dat) |*.dat|",
                    "dat", path))
        return;
    host_.ShowOutcome(ExportSpectrum(project_, path), msg::kDataFileExported,
                      msg::kErrorSavingFile);
}

void RegionWindow::ExportPeakParametersCommand() {
    const Region& region = project_.Current();
    if (!IsSet(region.HasData) || !IsSet(region.HasBackground)) return;
    std::string path;
    if (!SaveDialog("Export peak parameters", "Data Files (*.par) |*.par|", "par", path)) return;
    host_.ShowOutcome(ExportPeakParameters(project_, path), msg::kDataFileExported,
                      msg::kErrorSavingFile);
}

void RegionWindow::LoadRegionParametersCommand() {
    const std::string path =
        files_.Open("Load Region Parameters", "Region Parameter Files (*.rpa) |*.rpa|");
    if (path.empty()) {
        host_.ShowError(msg::kErrorReadingFile);
        return;
    }
    project_.FileName = path;
    if (Status st = LoadRegionParameters(project_, host_, path); !st) host_.Show(st);
}

void RegionWindow::SaveRegionParametersCommand() {
    if (!IsSet(project_.Current().HasBackground)) return;
    std::string path;
    if (!SaveDialog("Save region parameters", "Region Parameter Files (*.rpa) |*.rpa|", "rpa",
                    path))
        return;
    host_.ShowOutcome(SaveRegionParameters(project_, path), msg::kParameterFileSaved,
                      msg::kErrorSavingFile);
}

void RegionWindow::ExportClipboardCommand() {
    const QSize size = plot_->size().expandedTo(QSize(800, 600));
    QApplication::clipboard()->setImage(RegionPicture(project_, true, size));
}

void RegionWindow::PrintCommand(bool withPeakTable) {
    if (!IsSet(project_.Current().HasData)) return;
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle(withPeakTable ? QStringLiteral("Print with peak parameters")
                                        : QStringLiteral("Print Spectrum"));
    if (dialog.exec() != QDialog::Accepted) return;
    if (!PrinterAvailable(printer)) {
        host_.ShowError(msg::kNoPrinter);
        return;
    }
    if (!PrintRegion(project_, printer, withPeakTable)) host_.ShowError(msg::kPrintingFailed);
}

void RegionWindow::BackgroundCommand() {
    if (!IsSet(project_.Current().HasData)) return;
    if (openBackgroundDialog) openBackgroundDialog();  // the background dialog comes next
}

void RegionWindow::AddPeakCommand() {
    if (addPeak) addPeak();  // the peak editor comes with the new peak
}

void RegionWindow::RegionCaptionCommand() {
    if (openRegionCaption) openRegionCaption();  // the caption dialog comes next
}

void RegionWindow::RegionShiftCommand() {
    if (openRegionShift) openRegionShift();  // the shift dialog comes next
}

void RegionWindow::ClearParametersCommand() { ClearRegionParameters(project_, host_); }

void RegionWindow::DeleteRegionCommand() {
    if (host_.AskYesNo(msg::kDeleteRegionTitle, msg::kDeleteRegionText))
        DeleteRegionData(project_, host_);
}

void RegionWindow::OptimiseRegionCommand() {
    host_.ShowFitSummary(molvera::OptimiseRegionCommand(project_, host_));
}

void RegionWindow::ReDisplayCommand() { host_.CurvesChanged(); }

}  // namespace molvera::ui
