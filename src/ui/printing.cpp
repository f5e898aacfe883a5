#include "ui/printing.h"

#include <memory>

#include <QApplication>
#include <QBuffer>
#include <QByteArray>
#include <QFileInfo>
#include <QLabel>
#include <QPainter>
#include <QPrinterInfo>

#include "plot/printout.h"
#include "session/report.h"
#include "ui/qtcanvas.h"

namespace molvera::ui {

namespace {

// Text size of the page and the picture, in pixels of 1/96 inch.
constexpr int kFontPixels = 13;

// The "Printing...." notice; only a widget program can show it.
std::unique_ptr<QLabel> ShowPrintingNotice() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) return nullptr;
    auto notice = std::make_unique<QLabel>("Printing....");
    notice->setWindowTitle("Printing");
    notice->setMargin(24);
    notice->show();
    QCoreApplication::processEvents();
    return notice;
}

}  // namespace

void DrawRegionOn(QPainter& painter, const QRectF& logical, const Project& project,
                  bool withPeakTable) {
    QFont font = painter.font();
    font.setPixelSize(kFontPixels);
    painter.setFont(font);
    QtCanvas canvas(painter, logical);
    DrawPrintout(project, canvas, withPeakTable);
}

bool PrinterAvailable(const QPrinter& printer) {
    return printer.outputFormat() == QPrinter::PdfFormat ||
           !QPrinterInfo::availablePrinters().isEmpty();
}

bool PrintRegion(const Project& project, QPrinter& printer, bool withPeakTable) {
    if (!PrinterAvailable(printer)) return false;
    const std::unique_ptr<QLabel> notice = ShowPrintingNotice();
    QPainter painter;
    if (!painter.begin(&printer)) return false;
    // Draw in units of 1/96 inch so that text and pen widths match the screen.
    const QRect page = printer.pageLayout().paintRectPixels(printer.resolution());
    const double k = 96.0 / printer.resolution();
    const QRect logical(0, 0, qRound(page.width() * k), qRound(page.height() * k));
    painter.setViewport(0, 0, page.width(), page.height());
    painter.setWindow(logical);
    DrawRegionOn(painter, logical, project, withPeakTable);
    return painter.end();
}

QImage RegionPicture(const Project& project, bool withPeakTable, QSize size) {
    QImage image(size.expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    DrawRegionOn(painter, QRectF(image.rect()), project, withPeakTable);
    painter.end();
    return image;
}

std::optional<std::string> ReportText(const Project& project, const std::vector<int>& regions,
                                      const std::string& path, const std::string& source) {
    const QString ext = QFileInfo(QString::fromStdString(path)).suffix().toLower();
    if (ext == "csv") return ReportCsv(project, regions);
    if (ext == "json") return ReportJson(project, regions, source);
    if (ext != "html") return std::nullopt;
    // Each region as the render command draws it, as PNG bytes.
    std::vector<std::string> pngs;
    Project copy = project;
    for (int r : regions) {
        copy.CurrentRegion = static_cast<Int16>(r);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        RegionPicture(copy, false, QSize(1200, 800)).save(&buffer, "PNG");
        pngs.emplace_back(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    return ReportHtml(project, regions, source, pngs);
}

}  // namespace molvera::ui
