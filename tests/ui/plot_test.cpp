// The plot widget driven by mouse and keys, the region picture, the PDF printout, and
// what QtCanvas keeps of a dense curve.
#include <cmath>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPrinter>
#include <QTest>
#include <QWheelEvent>

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

// Pixels within 40 of a colour in each channel.
int Count(const QImage& image, Rgb colour) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            n += std::abs(c.red() - colour.r) < 40 && std::abs(c.green() - colour.g) < 40 &&
                 std::abs(c.blue() - colour.b) < 40;
        }
    return n;
}

void ExpectView(const PlotView& v, double left, double right, double low, double high) {
    const double tol = 1e-6 * (std::abs(left) + std::abs(high) + 1);
    EXPECT_NEAR(v.beLeft, left, tol);
    EXPECT_NEAR(v.beRight, right, tol);
    EXPECT_NEAR(v.iLow, low, tol);
    EXPECT_NEAR(v.iHigh, high, tol);
}

TEST(PlotWidget, WheelRectanglePanResetAndReadOut) {
    Project p;
    const int slot = FitSample(p);
    PlotWidget w(p);
    w.resize(800, 500);
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    w.RedrawNow();
    const PlotView autoView = w.Layout().spectrum.view;
    ASSERT_TRUE(w.View().IsAuto());
    const SurfaceRect a = w.Layout().spectrum.area;
    const QSizeF size(w.size());
    const QPoint centre = FromSurface({(a.x0 + a.x1) / 2, (a.y0 + a.y1) / 2}, size).toPoint();
    const QPoint corner = FromSurface({a.x0 + 0.1, a.y1 - 0.1}, size).toPoint();

    // The wheel zooms in about the pointer: the point under it stays.
    const QPointF under = w.ToPlotUnits(centre);
    QWheelEvent wheel(centre, w.mapToGlobal(centre), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&w, &wheel);
    w.RedrawNow();
    EXPECT_NEAR(w.View().beLeft - w.View().beRight, 0.85 * (autoView.beLeft - autoView.beRight),
                1e-9);
    EXPECT_NEAR(w.ToPlotUnits(centre).x(), under.x(), 1e-6);
    EXPECT_NEAR(w.ToPlotUnits(centre).y(), under.y(), 1e-6);
    QTest::keyClick(&w, Qt::Key_Home);
    EXPECT_TRUE(w.View().IsAuto());
    w.RedrawNow();

    // A dragged rectangle becomes the view.
    const QPointF from = w.ToPlotUnits(corner), to = w.ToPlotUnits(centre);
    QTest::mousePress(&w, Qt::LeftButton, {}, corner);
    QTest::mouseMove(&w, centre);
    QTest::mouseRelease(&w, Qt::LeftButton, {}, centre);
    w.RedrawNow();
    ExpectView(w.View(), from.x(), to.x(), to.y(), from.y());

    // Shift-drag pans: the point under the pointer follows it.
    // (to a pixel or two: the panel's edge moves when the tick labels change width).
    const QPointF grabbed = w.ToPlotUnits(centre);
    QTest::mousePress(&w, Qt::LeftButton, Qt::ShiftModifier, centre);
    QTest::mouseMove(&w, corner);
    QTest::mouseRelease(&w, Qt::LeftButton, Qt::ShiftModifier, corner);
    w.RedrawNow();
    const QPointF pixel = w.ToPlotUnits(QPoint(1, 1)) - w.ToPlotUnits(QPoint(0, 0));
    EXPECT_NEAR(w.ToPlotUnits(corner).x(), grabbed.x(), 3 * std::abs(pixel.x()));
    EXPECT_NEAR(w.ToPlotUnits(corner).y(), grabbed.y(), 3 * std::abs(pixel.y()));
    QTest::mouseDClick(&w, Qt::LeftButton, {}, centre);
    EXPECT_TRUE(w.View().IsAuto());
    w.RedrawNow();

    // The read-out follows the pointer in a panel and clears outside and on leaving.
    QTest::mouseMove(&w, centre);
    EXPECT_TRUE(w.HasReadout());
    const QPointF c = w.ToPlotUnits(centre);
    EXPECT_EQ(w.Readout(), ReadoutText(c.x(), c.y()));
    QWheelEvent away(corner, w.mapToGlobal(corner), {}, {0, -240}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&w, &away);  // zoomed out about another point: still current
    w.RedrawNow();
    const QPointF d = w.ToPlotUnits(centre);
    EXPECT_TRUE(d != c && w.Readout() == ReadoutText(d.x(), d.y()));
    QTest::mouseMove(&w, QPoint(2, 2));
    EXPECT_FALSE(w.HasReadout());
    QTest::mouseMove(&w, centre);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&w, &leave);
    EXPECT_FALSE(w.HasReadout());

    // The selected peak is drawn thicker in its colour; R scales the residual.
    const int thin = Count(w.grab().toImage(), PeakColour(0));
    w.SetSelectedPeak(slot);
    w.RedrawNow();
    EXPECT_GT(Count(w.grab().toImage(), PeakColour(0)), thin + 100);
    QTest::keyClick(&w, Qt::Key_R);
    EXPECT_TRUE(w.ScaledResidual());
}

TEST(RegionPicture, DrawsTheWindowsPlotAndPrintsToPdf) {
    Project p;
    FitSample(p);
    const QImage plain = RegionPicture(p, false, QSize(800, 600));
    EXPECT_GT(Count(plain, kDataColour), 200);
    EXPECT_GT(Count(plain, PeakColour(0)), 50);
    // The table adds black text to the picture.
    EXPECT_GT(Count(RegionPicture(p, true, QSize(800, 600)), kBlack), Count(plain, kBlack) + 50);
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
