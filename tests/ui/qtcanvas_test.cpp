// QtCanvas on a QImage: the user rectangle, text extents, opaque text, bad coordinates.

#include "ui/qtcanvas.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

namespace molvera::ui {
namespace {

bool IsRed(const QImage& image, int x, int y) {
    const QColor c = image.pixelColor(x, y);
    return c.red() > 200 && c.green() < 80 && c.blue() < 80;
}

TEST(QtCanvas, UserRectangleMapsOntoTheTargetWithEnergyFallingToTheRight) {
    QImage image(200, 100, QImage::Format_RGB32);
    QPainter painter(&image);
    QtCanvas canvas(painter, QRectF(0, 0, 200, 100));
    canvas.Clear();
    canvas.SetScale(300, 10, 280, 0);  // 300 eV at the left, intensity 10 at the top
    EXPECT_EQ(canvas.ToLogical(300, 10), QPointF(0, 0));
    EXPECT_EQ(canvas.ToLogical(280, 0), QPointF(200, 100));
    EXPECT_EQ(canvas.ToLogical(290, 5), QPointF(100, 50));
    EXPECT_EQ(canvas.ToUser(QPointF(50, 25)), QPointF(295, 7.5));

    canvas.SetLineWidth(3);
    canvas.Line(299, 9, 281, 1, kRed);  // top left to bottom right
    // A non-finite point draws nothing; far-away points are clamped, not lost.
    canvas.Line(std::numeric_limits<double>::quiet_NaN(), 5, 290, 5, kRed);
    canvas.Line(1e300, 5, -1e300, 5, kBlue);
    canvas.SetScale(1, 1, 1, 0);  // degenerate: ignored
    EXPECT_EQ(canvas.ToLogical(280, 0), QPointF(200, 100));
    canvas.Flush();  // joined segments are drawn when the curve ends
    painter.end();
    // (299, 9) is pixel (10, 10) and (281, 1) is (190, 90).
    EXPECT_TRUE(IsRed(image, 11, 11));
    EXPECT_TRUE(IsRed(image, 55, 30));
    const QColor far = image.pixelColor(150, 50);  // the far-away line still crosses, clamped
    EXPECT_TRUE(far.blue() > 200 && far.red() < 80);
    EXPECT_TRUE(IsRed(image, 189, 89));
    EXPECT_FALSE(IsRed(image, 190, 10));
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

TEST(QtCanvas, TextExtentsFollowTheScaleAndOpaqueTextErases) {
    QImage image(400, 200, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    QFont font = painter.font();
    font.setPixelSize(16);
    painter.setFont(font);
    QtCanvas canvas(painter, QRectF(0, 0, 400, 200));
    canvas.SetScale(0, 20, 40, 0);
    const double w1 = canvas.TextWidth("0000");
    const double h1 = canvas.TextHeight("Sample");
    EXPECT_GT(w1, 0);
    EXPECT_GT(h1, 0);
    canvas.SetScale(80, 40, 0, 0);  // twice the units in both directions, x reversed
    EXPECT_NEAR(canvas.TextWidth("0000"), 2 * w1, 1e-9);
    EXPECT_NEAR(canvas.TextHeight("Sample"), 2 * h1, 1e-9);
    canvas.SetBold(true);
    EXPECT_GE(canvas.TextWidth("0000"), 2 * w1);
    canvas.SetBold(false);

    // Print moves the current point one line down; opaque blanks paint white.
    canvas.SetScale(0, 20, 40, 0);
    canvas.MoveTo(2, 18);
    canvas.SetOpaqueText(true);
    canvas.Print(std::string(25, ' '));
    EXPECT_DOUBLE_EQ(canvas.CurrentX(), 2);
    EXPECT_NEAR(canvas.CurrentY(), 18 - h1, 1e-9);
    painter.end();
    const QPointF corner = QPointF(2 * 10, 2 * 10);  // (2, 18) in pixels
    EXPECT_EQ(image.pixelColor(corner.toPoint() + QPoint(5, 5)), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(5, 5), QColor(Qt::black));  // outside the text box
}

}  // namespace
}  // namespace molvera::ui
