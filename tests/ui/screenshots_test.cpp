// `make screenshots`: pictures of the windows as a user sees them, saved as PNG into the
// folder named by MOLVERA_SCREENSHOT_DIR. Disabled in the normal test run.
#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>

#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"
#include "ui/peakeditor.h"
#include "ui/plotwidget.h"

namespace molvera::test {
namespace {

void Save(QWidget& w, const QString& dir, const char* name) {
    w.show();
    QCoreApplication::processEvents();
    const QString path = dir + QLatin1Char('/') + QLatin1String(name);
    const QPixmap picture = w.grab();
    ASSERT_TRUE(picture.save(path, "PNG")) << path.toStdString();
    const QImage back(path);
    EXPECT_EQ(back.size(), picture.size());
    // Not a blank picture: more than one colour in it.
    const QRgb first = back.pixel(0, 0);
    bool varied = false;
    for (int y = 0; y < back.height() && !varied; y += 3)
        for (int x = 0; x < back.width() && !varied; x += 3) varied = back.pixel(x, y) != first;
    EXPECT_TRUE(varied) << name;
}

TEST_F(GuiTest, DISABLED_Screenshots) {
    const QString dir =
        qEnvironmentVariable("MOLVERA_SCREENSHOT_DIR", QStringLiteral("out/screenshots"));
    ASSERT_TRUE(QDir().mkpath(dir));

    main().RegionButton(1)->click();
    ImportSample();
    GiveBackground();
    const float positions[] = {284.8f, 286.3f, 288.6f};
    for (float p : positions) {
        Menu("addPeakAction");
        Peak& peak = project().Peaks[static_cast<std::size_t>(project().CurrentPeak)];
        peak.Position = p;
        peak.HeightPercent = 30;
        peak.Area = HeightPercentToArea(project(), peak);
    }
    ComputeRegionEnvelope(project(), gui->host());
    project().Options.Method = 1;
    project().Options.NewtonTrials = 20;
    Menu("optimiseRegionAction");
    main().DescriptionBox()->setText(QStringLiteral("C 1s of a sample, three components"));

    region().resize(900, 620);
    Save(main(), dir, "main-window.png");
    Save(region(), dir, "region-window.png");
    main().findChild<QPushButton*>("optionsButton")->click();
    Save(gui->optionsWindow(), dir, "options-dialog.png");
    Menu("backgroundAction");
    gui->backgroundDialog().findChild<QPushButton*>("acceptButton")->click();  // shows the area
    Save(gui->backgroundDialog(), dir, "background-dialog.png");
    gui->backgroundDialog().hide();

    // The second peak in the editor, highlighted in the plot, with its area constraint open.
    main().PeakButton(11)->click();
    Save(gui->peakEditor(), dir, "peak-editor.png");
    Save(region(), dir, "region-window-selected-peak.png");
    gui->peakEditor().findChild<QPushButton*>("areaConstraintsButton")->click();
    Save(gui->constraintDialog(), dir, "constraint-dialog.png");
}

}  // namespace
}  // namespace molvera::test
