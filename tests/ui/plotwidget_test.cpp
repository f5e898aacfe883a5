// The plot widget, the region picture and printing to PDF, on real Qt surfaces.

#include "ui/plotwidget.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPrinter>
#include <QTest>

#include "spectral/envelope.h"
#include "spectral/regionedit.h"
#include "support/paths.h"
#include "support/recording_host.h"
#include "support/sample_region.h"
#include "ui/printing.h"

namespace molvera::ui {
namespace {

// Region 1 with data, a Shirley background and one peak; returns the peak's slot.
int FitSample(Project& p) {
    test::FillSampleRegion(p, 0, 41, 290.0f, 0.25f);
    test::GiveSampleBackground(p, 0);
    test::RecordingHost host;
    const int slot = AddPeak(p, host);
    ComputeRegionEnvelope(p, host);
    return slot;
}

// Pixels close to a pure colour (antialiased edges excluded).
int CountColour(const QImage& image, QColor colour) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.red() - colour.red()) < 40 &&
                std::abs(c.green() - colour.green()) < 40 &&
                std::abs(c.blue() - colour.blue()) < 40)
                ++n;
        }
    return n;
}

// Leftmost and rightmost columns holding blue.
std::pair<int, int> BlueColumns(const QImage& image) {
    int lo = image.width(), hi = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.blue() > 200 && c.red() < 60 && c.green() < 60)
                lo = std::min(lo, x), hi = std::max(hi, x);
        }
    return {lo, hi};
}

TEST(PlotWidget, DrawsSpectrumAndHighlightsTheSelectedPeak) {
    Project p;
    const int slot = FitSample(p);
    ASSERT_GE(slot, 0);
    PlotWidget w(p);
    w.resize(600, 400);
    w.RedrawNow();
    QImage plain = w.grab().toImage();
    EXPECT_GT(CountColour(plain, Qt::blue), 200);
    EXPECT_EQ(CountColour(plain, Qt::red), 0);
    EXPECT_GT(CountColour(plain, Qt::black), 200);  // axis, labels, fitted curves

    w.SetSelectedPeak(slot);
    w.RedrawNow();
    EXPECT_GT(CountColour(w.grab().toImage(), Qt::red), 100);
    w.SetSelectedPeak(-1);
    w.RedrawNow();
    EXPECT_EQ(CountColour(w.grab().toImage(), Qt::red), 0);
}

TEST(PlotWidget, EmptyRegionIsBlankAndPlotScalesWithTheWindow) {
    Project p;
    PlotWidget w(p);
    w.resize(300, 200);
    w.RedrawNow();
    const QImage blank = w.grab().toImage();
    EXPECT_EQ(CountColour(blank, Qt::white), blank.width() * blank.height());

    FitSample(p);
    w.resize(600, 400);
    const auto [lo1, hi1] = BlueColumns(w.grab().toImage());
    w.resize(1200, 800);
    const auto [lo2, hi2] = BlueColumns(w.grab().toImage());
    ASSERT_GT(hi1, lo1);
    // Twice the window, a little more than twice the spectrum: the text margins keep their size.
    const double ratio = static_cast<double>(hi2 - lo2) / (hi1 - lo1);
    EXPECT_GE(ratio, 2.0);
    EXPECT_LE(ratio, 2.4);
}

TEST(PlotWidget, PositionsMapToPlotUnitsWithEnergyFallingToTheRight) {
    Project p;
    FitSample(p);
    PlotWidget w(p);
    w.resize(600, 400);
    w.grab();  // a hidden widget paints only when grabbed
    const QPointF topLeft = w.ToPlotUnits(QPointF(0, 0));
    const QPointF bottomRight = w.ToPlotUnits(QPointF(600, 400));
    EXPECT_GT(topLeft.x(), 290.0);      // higher than the highest energy
    EXPECT_LT(bottomRight.x(), 280.0);  // lower than the lowest
    EXPECT_GT(topLeft.y(), bottomRight.y());
    const QPointF mid = w.ToPlotUnits(QPointF(300, 200));
    EXPECT_NEAR(mid.x(), (topLeft.x() + bottomRight.x()) / 2, 1e-9);
}

TEST(PlotWidget, ManyRedrawRequestsShareOnePaintPerRefresh) {
    Project p;
    FitSample(p);
    PlotWidget w(p);
    w.resize(600, 400);
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    QApplication::processEvents();
    const int before = w.PaintCount();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 2000; ++i) {
        w.RequestRedraw();
        QApplication::processEvents();
    }
    const qint64 elapsed = clock.elapsed();
    QTest::qWait(60);  // the last request is still painted
    const int paints = w.PaintCount() - before;
    EXPECT_GE(paints, 1);
    EXPECT_LE(paints, elapsed / 10 + 3) << elapsed << " ms";
    EXPECT_LT(paints, 2000 / 4);

    // The pointer's read-out repaints the plot.
    const int beforeMove = w.PaintCount();
    QTest::mouseMove(&w, QPoint(200, 150));
    QTest::qWait(30);
    EXPECT_GT(w.PaintCount(), beforeMove);
}

TEST(RegionPicture, SizeAndPeakTable) {
    Project p;
    FitSample(p);
    const QImage plain = RegionPicture(p, false, QSize(800, 600));
    const QImage table = RegionPicture(p, true, QSize(800, 600));
    EXPECT_EQ(plain.size(), QSize(800, 600));
    EXPECT_GT(CountColour(plain, Qt::blue), 200);
    // The table adds black text to the picture.
    EXPECT_GT(CountColour(table, Qt::black), CountColour(plain, Qt::black) + 50);

    Project empty;
    EXPECT_EQ(RegionPicture(empty, true, QSize(0, 0)).size(), QSize(1, 1));
}

TEST(PrintRegion, WritesAPdfPage) {
    Project p;
    FitSample(p);
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
    // No print notice stays behind.
    for (QWidget* top : QApplication::topLevelWidgets())
        EXPECT_FALSE(top->isVisible() && top->windowTitle() == "Printing");
}

}  // namespace
}  // namespace molvera::ui
