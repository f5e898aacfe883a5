// batch --plots: each fitted parameter against the series, one PNG picture each.

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <QColor>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QString>

#include "base/numtext.h"
#include "cli/command_list.h"
#include "plot/plotview.h"
#include "plot/spectrumplot.h"

namespace molvera::cli {

namespace {

constexpr int kWidth = 900;
constexpr int kHeight = 600;
constexpr int kLeft = 100, kRight = 130, kTop = 50, kBottom = 70;

// The fields of a CSV row of batch (a quoted field may hold commas).
std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> out(1);
    bool quoted = false;
    for (char c : line) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            out.emplace_back();
        else
            out.back().push_back(c);
    }
    return out;
}

struct Point {
    double x, y;
};

// Low and high of `values`, widened a little (and around a single value) for the frame.
std::pair<double, double> Extent(const std::vector<double>& values) {
    const auto [lo, hi] = std::minmax_element(values.begin(), values.end());
    const double pad = *hi > *lo ? 0.05 * (*hi - *lo) : std::max(1.0, std::fabs(*lo) * 0.05);
    return {*lo - pad, *hi + pad};
}

bool Plot(const std::map<int, std::vector<Point>>& peaks, const QString& title,
          const QString& xTitle, const std::string& path) {
    std::vector<double> xs, ys;
    for (const auto& [slot, points] : peaks)
        for (const Point& p : points) {
            xs.push_back(p.x);
            ys.push_back(p.y);
        }
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame(kLeft, kTop, kWidth - kLeft - kRight, kHeight - kTop - kBottom);
    painter.drawRect(frame);
    painter.drawText(QRectF(0, 0, kWidth, kTop), Qt::AlignCenter, title);
    painter.drawText(QRectF(kLeft, kHeight - kBottom / 2.0, frame.width(), kBottom / 2.0),
                     Qt::AlignCenter, xTitle);
    if (!xs.empty()) {
        const auto [x0, x1] = Extent(xs);
        const auto [y0, y1] = Extent(ys);
        auto px = [&](double x) { return frame.left() + (x - x0) / (x1 - x0) * frame.width(); };
        auto py = [&](double y) { return frame.bottom() - (y - y0) / (y1 - y0) * frame.height(); };
        // Round ticks (1, 2, 5 x 10^n) on both axes, labelled as the region plot labels them.
        const double xStep = NiceStep(x1 - x0, 6), yStep = NiceStep(y1 - y0, 6);
        for (const double fx : Ticks(x0, x1, 6)) {
            painter.drawLine(QPointF(px(fx), frame.bottom()), QPointF(px(fx), frame.bottom() + 5));
            painter.drawText(QRectF(px(fx) - 50, frame.bottom() + 6, 100, 20), Qt::AlignHCenter,
                             QString::fromStdString(TickLabel(fx, xStep)));
        }
        for (const double fy : Ticks(y0, y1, 6)) {
            painter.drawLine(QPointF(frame.left() - 5, py(fy)), QPointF(frame.left(), py(fy)));
            painter.drawText(QRectF(0, py(fy) - 10, kLeft - 8, 20),
                             Qt::AlignRight | Qt::AlignVCenter,
                             QString::fromStdString(TickLabel(fy, yStep)));
        }
        int n = 0;
        for (const auto& [slot, points] : peaks) {
            const Rgb c = slot < 0 ? kEnvelopeColour : PeakColour(n);
            const QColor colour(c.r, c.g, c.b);
            painter.setPen(QPen(colour, 2));
            for (std::size_t k = 0; k < points.size(); ++k) {
                const QPointF at(px(points[k].x), py(points[k].y));
                painter.drawEllipse(at, 3, 3);
                if (k > 0) painter.drawLine(QPointF(px(points[k - 1].x), py(points[k - 1].y)), at);
            }
            painter.drawText(QPointF(frame.right() + 15, frame.top() + 20 + 20 * n),
                             slot < 0 ? QString("chi-square") : QString("peak %1").arg(slot));
            ++n;
        }
    }
    painter.end();
    return image.save(QString::fromStdString(path), "PNG");
}

}  // namespace

bool WriteSeriesPlots(const std::string& csv, const std::string& prefix) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    char name[] = "molvera-cli";
    int qtArgc = 1;
    char* qtArgv[] = {name, nullptr};
    QGuiApplication app(qtArgc, qtArgv);  // the fonts of the texts
    constexpr std::array<std::pair<const char*, int>, 5> kParameters = {
        {{"position", 6}, {"fwhm", 8}, {"area", 10}, {"gl", 12}, {"chi_square", 14}}};
    std::vector<std::vector<std::string>> rows;
    bool everyVariable = true;
    for (std::size_t start = csv.find('\n') + 1, end; start < csv.size(); start = end + 1) {
        end = std::min(csv.find('\n', start), csv.size());
        std::vector<std::string> f = Fields(csv.substr(start, end - start));
        if (f.size() != 16 || !f[15].empty()) continue;  // a spectrum that failed
        everyVariable = everyVariable && !f[3].empty();
        rows.push_back(std::move(f));
    }
    const int xColumn = everyVariable && !rows.empty() ? 3 : 0;
    const QString xTitle = xColumn == 3 ? "experimental variable" : "spectrum";
    bool ok = true;
    for (const auto& [name, column] : kParameters) {
        // By peak slot; the chi-square once per spectrum, as slot -1.
        std::map<int, std::vector<Point>> peaks;
        const std::string* lastSpectrum = nullptr;
        for (const auto& f : rows) {
            const bool whole = column == 14;
            if (whole && lastSpectrum && *lastSpectrum == f[0]) continue;
            lastSpectrum = &f[0];
            peaks[whole ? -1 : std::stoi(f[4])].push_back(
                {LeadingNumber(f[xColumn]), LeadingNumber(f[column])});
        }
        ok = Plot(peaks, QString("%1 against the %2").arg(name, xTitle), xTitle,
                  prefix + "-" + name + ".png") &&
             ok;
    }
    return ok;
}

}  // namespace molvera::cli
