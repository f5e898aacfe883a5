// `make screenshots`: the pictures of docs/guide.md, a C 1s fit of a real spectrum from
// import to report, taken as a user goes through it. Disabled in the normal test run.
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QMenu>
#include <QTest>

#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/fittingwindow.h"
#include "ui/gui_fixture.h"
#include "ui/peakeditor.h"
#include "ui/peaktable.h"

namespace molvera::test {
namespace {

class GuideTest : public GuiTest {
protected:
    QString dir = qEnvironmentVariable("MOLVERA_SCREENSHOT_DIR", QStringLiteral("out/screenshots"));

    void Save(QWidget& w, const char* name) {
        w.show();
        QTest::qWait(80);  // the peak table follows 50 ms after a change
        const QString path = dir + QStringLiteral("/guide-") + QLatin1String(name) + ".png";
        EXPECT_TRUE(w.grab().save(path, "PNG")) << path.toStdString();
    }
    void SaveMenu(const char* menu, const char* name) {
        auto* m = region().findChild<QMenu*>(QLatin1String(menu));
        ASSERT_NE(m, nullptr) << menu;
        m->popup(region().mapToGlobal(QPoint(0, 0)));
        Save(*m, name);
        m->hide();
    }
};

TEST_F(GuideTest, DISABLED_Screens) {
    ASSERT_TRUE(QDir().mkpath(dir));
    region().resize(900, 640);
    main().RegionButton(0)->click();

    // 1. Data > Import ASCII: a two-column C 1s spectrum, 301.5 .. 266.5 eV.
    SaveMenu("dataMenu", "import-menu");
    ImportSample();
    ASSERT_TRUE(sink.messages.empty()) << sink.messages.front();
    Save(region(), "imported");

    // 2. Background: Shirley from 280 to 296 eV, where the spectrum is flat on both sides.
    Menu("backgroundAction");
    ui::BackgroundDialog& bg = gui->backgroundDialog();
    Type(bg, "lowBEText", "280");
    Type(bg, "highBEText", "296");
    Child<QComboBox>(bg, "backgroundType")->setCurrentText(QStringLiteral("Shirley"));
    Click(bg, "acceptButton");
    Save(bg, "background-dialog");
    bg.hide();
    Save(region(), "background");

    // 3. Three peaks placed by eye: C-C at the maximum, C=O and the shake-up above it; the
    // second and third as wide as the first (FWHM constraint: peak 0 x 1).
    ui::PeakEditor& editor = gui->peakEditor();
    struct Start {
        const char *label, *position, *area;
    };
    for (const Start& s : {Start{"C 1s C-C", "284.6", "15000"}, Start{"C 1s C=O", "287.5", "1500"},
                           Start{"C 1s pi-pi*", "290.8", "1000"}}) {
        Menu("addPeakAction");
        Type(editor, "labelText", QLatin1String(s.label));
        Type(editor, "positionText", QLatin1String(s.position));
        Type(editor, "fwhmText", "1.4");
        Type(editor, "glText", "30");
        Type(editor, "areaText", QLatin1String(s.area));
        QTest::qWait(400);  // typed values take effect 0.3 s after the last key
        if (project().CurrentPeak == 0) Save(editor, "peak-editor");
        if (project().CurrentPeak > 0) {
            Click(editor, "fwhmConstraintsButton");
            ui::ConstraintDialog& cnt = gui->constraintDialog();
            Child<QCheckBox>(cnt, "useRelation")->setChecked(true);
            Type(cnt, "referencePeakText", "0");
            Child<QComboBox>(cnt, "operation")->setCurrentText(QStringLiteral("*"));
            Type(cnt, "argumentText", "1");
            if (project().CurrentPeak == 1) Save(cnt, "constraint");
            Click(cnt, "okButton");
        }
        Click(editor, "acceptButton");
    }
    ASSERT_TRUE(sink.messages.empty()) << sink.messages.front();
    Save(region(), "start");

    // 4. Optimise Region: every free value fitted at once, with its uncertainty.
    Menu("optimiseRegionAction");
    Save(gui->fittingWindow(), "fitting");
    gui->fittingWindow().hide();
    main().DescriptionBox()->setText(QStringLiteral("C 1s of a carbon sample, three components"));
    Save(main(), "main");
    region().Table()->Refresh();
    Save(region(), "fitted");

    // 5. File > Export Report...
    SaveMenu("fileMenu", "file-menu");
}

}  // namespace
}  // namespace molvera::test
