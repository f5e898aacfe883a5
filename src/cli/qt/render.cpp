// render: a region drawn as the printout (PNG picture, PDF page or SVG figure), for reports.

#include <string>

#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QString>
#include <QSvgGenerator>

#include "base/messages.h"
#include "cli/command_list.h"
#include "cli/common.h"
#include "ui/printing.h"

namespace molvera::cli {

namespace {

// Size of the PNG picture in pixels (and of the SVG figure in 1/96 inch).
constexpr int kPictureWidth = 1200;
constexpr int kPictureHeight = 800;

bool WritePdf(const Project& project, const std::string& path, bool withPeaks) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(path));
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Landscape);
    return ui::PrintRegion(project, printer, withPeaks);
}

bool WritePng(const Project& project, const std::string& path, bool withPeaks) {
    const QImage picture =
        ui::RegionPicture(project, withPeaks, QSize(kPictureWidth, kPictureHeight));
    return picture.save(QString::fromStdString(path), "PNG");
}

bool WriteSvg(const Project& project, const std::string& path, bool withPeaks) {
    QSvgGenerator svg;
    svg.setFileName(QString::fromStdString(path));
    svg.setSize(QSize(kPictureWidth, kPictureHeight));
    svg.setViewBox(QRect(0, 0, kPictureWidth, kPictureHeight));
    svg.setResolution(96);
    svg.setTitle(QString::fromStdString(project.Current().Caption.Str()).trimmed());
    QPainter painter;
    if (!painter.begin(&svg)) return false;
    ui::DrawRegionOn(painter, QRectF(0, 0, kPictureWidth, kPictureHeight), project, withPeaks);
    return painter.end();
}

}  // namespace

int RunRender(const Args& args) {
    if (!args.Has("o")) return Fail("no output file given (-o OUT.png, OUT.pdf or OUT.svg)");
    const std::string out = *args.Value("o");
    const std::string ext = LowerExtension(out);
    if (ext != "png" && ext != "pdf" && ext != "svg")
        return Fail("the output file must end in .png, .pdf or .svg");
    auto region = RegionArg(args);
    if (!region) return Fail("--region takes a region number 1..10");

    Session s;
    if (Status st = LoadOptions(args, s); !st) return Refused(st);
    if (Status st = LoadInput(s, args.Positional()[0]); !st) return Refused(st);
    s.project.CurrentRegion = static_cast<Int16>(*region);
    if (!IsSet(s.project.Current().HasData))
        return Fail("region " + std::to_string(*region + 1) + " holds no data");

    // Drawing needs a Qt application; without a display it draws off-screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    char name[] = "molvera-cli";
    char* qtArgv[] = {name, nullptr};
    QGuiApplication app(qtArgc, qtArgv);

    const bool withPeaks = args.Has("with-peaks");
    const bool written = ext == "pdf"   ? WritePdf(s.project, out, withPeaks)
                         : ext == "svg" ? WriteSvg(s.project, out, withPeaks)
                                        : WritePng(s.project, out, withPeaks);
    if (!written) {
        Print(msg::kErrorSavingFile);
        return kExitRefused;
    }
    return 0;
}

}  // namespace molvera::cli
