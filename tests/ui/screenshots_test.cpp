// `make screenshots`: pictures of the windows as a user sees them, saved as PNG into the
// folder named by MOLVERA_SCREENSHOT_DIR. Disabled in the normal test run.
#include <tuple>

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "base/messages.h"
#include "session/recovery.h"
#include "spectral/envelope.h"
#include "spectral/lineshape.h"
#include "support/files.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/fittingwindow.h"
#include "ui/gui_fixture.h"
#include "ui/optionswindow.h"
#include "ui/peakeditor.h"
#include "ui/peaktable.h"
#include "ui/plotwidget.h"
#include "ui/printing.h"
#include "ui/quantwindow.h"

namespace molvera::test {
namespace {

void Save(QWidget& w, const QString& dir, const char* name) {
    w.show();
    QTest::qWait(80);  // the peak table follows 50 ms after a change
    const QString path = dir + QLatin1Char('/') + QLatin1String(name);
    EXPECT_TRUE(w.grab().save(path, "PNG")) << path.toStdString();
}

TEST_F(GuiTest, DISABLED_Screenshots) {
    const QString dir =
        qEnvironmentVariable("MOLVERA_SCREENSHOT_DIR", QStringLiteral("out/screenshots"));
    ASSERT_TRUE(QDir().mkpath(dir));

    main().RegionButton(1)->click();
    SampleWithPeaks(3);
    for (auto [slot, position] : {std::pair{0, 284.4f}, {1, 285.4f}, {2, 286.6f}}) {
        Peak& peak = project().Peaks[slot];
        peak.Position = position;
        peak.HeightPercent = 30;
        peak.Area = HeightPercentToArea(project(), peak);
    }
    // The third peak as wide as the first: a relation the editor and the table show.
    project().Constraints[2].FWHM = {kTrue, 0, kFalse, 0, 2, 1, kFalse, 0, 0};
    project().Constraints[0].FWHM = {kFalse, 0, kTrue, 2, 0, 0, kFalse, 0, 0};
    project().Peaks[1].Label = Text20::From("C-O");
    ComputeRegionEnvelope(project(), gui->host());
    project().Options.Method = 1;
    project().Options.NewtonTrials = 20;
    Menu("optimiseRegionAction");
    main().DescriptionBox()->setText(QStringLiteral("C 1s of a sample, three components"));

    region().resize(900, 620);
    Save(main(), dir, "main-window.png");
    Save(region(), dir, "region-window.png");
    // The plot zoomed into 291..282 eV, and the printout page (A4 landscape at 96 dpi).
    ui::PlotWidget& plot = *region().Plot();
    PlotView zoomed = plot.Layout().spectrum.view;
    std::tie(zoomed.beLeft, zoomed.beRight) = std::pair(291.0, 282.0);
    plot.SetView(zoomed);
    plot.RedrawNow();
    Save(region(), dir, "region-window-zoomed.png");
    plot.SetView({});
    EXPECT_TRUE(ui::RegionPicture(project(), true, QSize(1123, 794)).save(dir + "/printout.png"));
    main().findChild<QPushButton*>("optionsButton")->click();
    Save(gui->optionsWindow(), dir, "options-dialog.png");
    Menu("backgroundAction");
    gui->backgroundDialog().findChild<QPushButton*>("acceptButton")->click();  // shows the area
    Save(gui->backgroundDialog(), dir, "background-dialog.png");
    gui->backgroundDialog().hide();

    // The third peak in the editor, highlighted in the plot and the table, its FWHM
    // following the first peak's, labelled C 1s with the computed RSF; then the second with
    // its area constraint open.
    for (int slot : {0, 2}) project().Peaks[slot].Label = Text20::From("C 1s");
    main().PeakButton(12)->click();
    Save(gui->peakEditor(), dir, "peak-editor.png");
    region().Table()->Refresh();
    Save(region(), dir, "region-window-peak-table.png");
    main().PeakButton(11)->click();
    Save(region(), dir, "region-window-selected-peak.png");
    gui->peakEditor().findChild<QPushButton*>("areaConstraintsButton")->click();
    Save(gui->constraintDialog(), dir, "constraint-dialog.png");
    gui->constraintDialog().hide();
    gui->peakEditor().hide();

    // A peak moved beyond the data: the warning in the status line.
    project().Peaks[2].Position = 310;
    ComputeRegionEnvelope(project(), gui->host());
    Menu("redisplayAction");
    Save(region(), dir, "region-window-warning.png");

    // The boxes of two commands as they ask and refuse (the sink recorded their texts).
    sink.saveAnswer = SaveChangesAnswer::Cancel;
    Click(main(), "closeButton");
    ASSERT_FALSE(sink.questions.empty());
    Save(*ui::SaveChangesBox(QString::fromStdString(sink.questions.back())), dir,
         "save-changes-prompt.png");
    sink.saveAnswer = SaveChangesAnswer::Discard;
    chooser.paths = {DataFile("real/lg4x/C1s_sample.csv")};
    Click(main(), "openProjectButton");
    ASSERT_FALSE(sink.messages.empty());
    Save(*ui::MessageBox(QString::fromStdString(sink.messages.back()), true), dir,
         "open-refused.png");
    RecoveryCopy copy;
    copy.originalPath = "/data/c1s.xps";
    copy.writtenAt = "2026-11-24 05:10";
    Save(*ui::QuestionBox(QString::fromLatin1(msg::kRestoreTitle),
                          QString::fromStdString(RestoreQuestion(copy))),
         dir, "restore-prompt.png");

    // The fitting window during a fit of peaks moved off (a tenth of a second into it), and
    // after it with the summary; the region window's File menu.
    for (int slot : {0, 1, 2}) project().Peaks[slot].Position += 0.6f;
    project().Options.NewtonTrials = 400;
    bool grabbed = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        const QString text = gui->fittingWindow().ProgressLabel()->text();
        if (grabbed || !text.contains(QStringLiteral("trial")) || text.endsWith(" 0.0 s")) return;
        grabbed = true;
        Save(gui->fittingWindow(), dir, "fitting-window.png");
    });
    timer.start(0);
    Menu("optimiseRegionAction");
    timer.stop();
    EXPECT_TRUE(grabbed);
    Save(gui->fittingWindow(), dir, "fitting-window-summary.png");
    auto* file = region().findChild<QMenu*>(QStringLiteral("fileMenu"));
    file->popup(region().mapToGlobal(QPoint(0, 0)));
    Save(*file, dir, "region-file-menu.png");
    file->hide();

    // Help > About Molvera.
    region().findChild<QAction*>(QStringLiteral("aboutAction"))->trigger();
    auto* about = region().findChild<QWidget*>(QStringLiteral("aboutDialog"));
    ASSERT_NE(about, nullptr);
    Save(*about, dir, "about-dialog.png");
    about->close();

    // Quantification on a real VAMAS file (a survey, Ni 2p, O 1s, C 1s and W 4f into regions
    // 1-5): one fitted peak each for C 1s, O 1s and the W 4f doublet.
    Click(main(), "closeButton");  // the changes discarded
    main().RegionButton(0)->click();
    chooser.paths.push_back(DataFile("real/lg4x/0-150W.vms"));
    Menu("importVamasAction");
    project().Options.Method = 2;
    ui::PeakEditor& editor = gui->peakEditor();
    for (const auto& [r, position, label, type] : {std::tuple(3, "282.5", "C 1s", "s"),
                                                   {2, "528.4", "O 1s", "s"},
                                                   {4, "33.5", "W 4f", "f"}}) {
        main().RegionButton(r)->click();
        GiveBackground();
        Menu("addPeakAction");
        Child<QComboBox>(editor, "peakType")->setCurrentText(QString::fromLatin1(type));
        Type(editor, "splittingText", "2.15");  // W 4f5/2 above 4f7/2
        Type(editor, "positionText", QString::fromLatin1(position));
        Type(editor, "labelText", QString::fromLatin1(label));
        Click(editor, "acceptButton");
        Menu("optimiseRegionAction");
    }
    ui::QuantWindow& quant = gui->quantWindow();
    quant.Open();
    quant.resize(600, 400);
    Save(quant, dir, "quantification.png");
}

}  // namespace
}  // namespace molvera::test
