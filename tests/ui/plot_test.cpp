// The plot widget, the region picture and printing to PDF on real Qt surfaces, and what
// QtCanvas keeps of a dense curve.
#include <cmath>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPrinter>

#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/paths.h"
#include "support/sample_region.h"
#include "ui/plotwidget.h"
#include "ui/printing.h"
#include "ui/qtcanvas.h"

namespace molvera::ui {
namespace {

// Region 1 with data, a Shirley background and one peak; returns the peak's slot.
int FitSample(Project& p) {
    test::FillSampleRegion(p, 0, 41, 290.0f, 0.25f);
    test::GiveSampleBackground(p, 0);
    const int slot = AddPeak(p, QuietHost());
    ComputeRegionEnvelope(p, QuietHost());
    return slot;
}

// Pixels close to a pure colour (antialiased edges excluded), and the leftmost and
// rightmost columns holding them.
struct Pixels {
    int count = 0, left = 1 << 20, right = -1;
};
Pixels Find(const QImage& image, QColor colour) {
    Pixels p;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.red() - colour.red()) < 40 &&
                std::abs(c.green() - colour.green()) < 40 &&
                std::abs(c.blue() - colour.blue()) < 40)
                ++p.count, p.left = std::min(p.left, x), p.right = std::max(p.right, x);
        }
    return p;
}

TEST(PlotWidget, DrawsSpectrumHighlightsTheSelectedPeakAndScalesWithTheWindow) {
    Project p;
    PlotWidget w(p);
    w.resize(300, 200);
    const QImage blank = w.grab().toImage();  // a hidden widget paints only when grabbed
    EXPECT_EQ(Find(blank, Qt::white).count, blank.width() * blank.height());

    const int slot = FitSample(p);
    w.resize(600, 400);
    w.RedrawNow();
    const QImage plain = w.grab().toImage();
    const Pixels blue = Find(plain, Qt::blue);
    EXPECT_GT(blue.count, 200);
    EXPECT_GT(Find(plain, Qt::black).count, 200);  // axis, labels, fitted curves
    w.SetSelectedPeak(slot);
    w.RedrawNow();
    EXPECT_GT(Find(w.grab().toImage(), Qt::red).count, 100);
    w.SetSelectedPeak(-1);
    w.RedrawNow();
    EXPECT_EQ(Find(w.grab().toImage(), Qt::red).count, 0);

    // Twice the window, a little more than twice the spectrum: the text margins keep their size.
    w.resize(1200, 800);
    const Pixels wide = Find(w.grab().toImage(), Qt::blue);
    const double ratio = static_cast<double>(wide.right - wide.left) / (blue.right - blue.left);
    EXPECT_GE(ratio, 2.0);
    EXPECT_LE(ratio, 2.4);
    // The pointer's read-out: energy falls to the right, intensity upwards.
    const QPointF a = w.ToPlotUnits(QPointF(0, 0)), b = w.ToPlotUnits(QPointF(1200, 800));
    EXPECT_TRUE(a.x() > 290.0 && b.x() < 280.0 && a.y() > b.y());
}

TEST(RegionPicture, SizePeakTableAndPdfPrintout) {
    Project p;
    FitSample(p);
    const QImage plain = RegionPicture(p, false, QSize(800, 600));
    EXPECT_GT(Find(plain, Qt::blue).count, 200);
    // The table adds black text to the picture.
    EXPECT_GT(Find(RegionPicture(p, true, QSize(800, 600)), Qt::black).count,
              Find(plain, Qt::black).count + 50);
    EXPECT_EQ(RegionPicture(Project{}, true, QSize(0, 0)).size(), QSize(1, 1));

    const std::string path = (test::ScratchDir() / "region.pdf").string();
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(path));
    EXPECT_TRUE(PrinterAvailable(printer));
    ASSERT_TRUE(PrintRegion(p, printer, true));
    std::ifstream in(path, std::ios::binary);
    std::string head(5, '\0');
    in.read(head.data(), 5);
    EXPECT_EQ(head, "%PDF-");
    for (QWidget* top : QApplication::topLevelWidgets())  // no print notice stays behind
        EXPECT_FALSE(top->isVisible() && top->windowTitle() == "Printing");
}

TEST(QtCanvas, ColumnExtremesKeepWhatAPixelColumnShows) {
    // Ten points per pixel column: a spike in the first column, a dip in the second.
    QPolygonF line;
    for (int i = 0; i < 30; ++i) line << QPointF(i * 0.1, i == 4 ? 9.0 : i == 13 ? -7.0 : 0.5 * i);
    const QPolygonF kept = ColumnExtremes(line, 1.0);
    const QPolygonF expected{{0, 0},    {0.4, 9},   {0.9, 4.5}, {1.0, 5.0},
                             {1.3, -7}, {1.9, 9.5}, {2.0, 10},  {2.9, 14.5}};
    ASSERT_EQ(kept.size(), expected.size());
    for (qsizetype i = 0; i < kept.size(); ++i) {
        EXPECT_NEAR(kept[i].x(), expected[i].x(), 1e-12) << i;
        EXPECT_EQ(kept[i].y(), expected[i].y()) << i;
    }
    // At ten times the resolution every point has a column of its own.
    EXPECT_EQ(ColumnExtremes(line, 10.0).size(), line.size());
}

}  // namespace
}  // namespace molvera::ui
