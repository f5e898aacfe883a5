// "Region Shift" and "Region Caption" opened from the region window's Parameters menu.
#include "ui/regiondialogs.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "ui/gui_fixture.h"
#include "ui/plotwidget.h"

namespace molvera::test {
namespace {

QStringList Labels(const QWidget& w) {
    QStringList texts;
    for (const QLabel* l : w.findChildren<QLabel*>()) texts << l->text();
    return texts;
}

TEST_F(GuiTest, RegionShiftIsStoredWithoutRedrawing) {
    main().RegionButton(2)->click();
    ImportSample();
    project().Regions[2].Shift = 0.25f;
    ui::RegionShiftDialog& dialog = gui->regionShiftDialog();
    Menu("regionShiftAction");
    ASSERT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Region Shift"));
    EXPECT_EQ(Labels(dialog), (QStringList{"Shift", "eV"}));
    auto* box = dialog.findChild<QLineEdit*>("shiftText");
    auto* accept = dialog.findChild<QPushButton*>("acceptButton");
    ASSERT_TRUE(box && accept);
    EXPECT_EQ(accept->text(), QStringLiteral("Accept"));
    EXPECT_EQ(box->text(), QStringLiteral("0.25"));

    const int redraws = gui->host().RedrawCount();
    box->setText(QStringLiteral("0.35 eV"));
    accept->click();
    EXPECT_EQ(project().Regions[2].Shift, 0.35f);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(gui->host().RedrawCount(), redraws);

    Menu("regionShiftAction");
    box->setText(QStringLiteral("abc"));
    accept->click();
    EXPECT_EQ(project().Regions[2].Shift, 0.0f);
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(GuiTest, LongRegionCaptionIsCutTo20AndRedrawn) {
    main().RegionButton(1)->click();
    ImportSample();
    ui::RegionCaptionDialog& dialog = gui->regionCaptionDialog();
    Menu("regionCaptionAction");
    ASSERT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Region Caption"));
    auto* box = dialog.findChild<QLineEdit*>("captionText");
    auto* ok = dialog.findChild<QPushButton*>("okButton");
    ASSERT_TRUE(box && ok);
    EXPECT_EQ(ok->text(), QStringLiteral("OK"));
    EXPECT_EQ(box->text(), QString(20, QLatin1Char(' ')));  // an empty caption is 20 blanks

    const int redraws = gui->host().RedrawCount();
    box->setText(QStringLiteral("C 1s, sputtered 30 minutes"));
    ok->click();
    EXPECT_EQ(project().Regions[1].Caption.Str(), "C 1s, sputtered 30 m");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(gui->host().RedrawCount(), redraws + 1);

    // A short caption is padded with blanks, and shown padded when reopened.
    Menu("regionCaptionAction");
    box->setText(QStringLiteral("Fe 2p"));
    ok->click();
    Menu("regionCaptionAction");
    EXPECT_EQ(box->text(), QStringLiteral("Fe 2p               "));
}

TEST_F(GuiTest, RegionDialogsAreDisabledDuringAFit) {
    Menu("regionShiftAction");
    Menu("regionCaptionAction");
    gui->host().FitStarted();
    EXPECT_FALSE(gui->regionShiftDialog().isEnabled());
    EXPECT_FALSE(gui->regionCaptionDialog().isEnabled());
    gui->host().FitEnded();
    EXPECT_TRUE(gui->regionShiftDialog().isEnabled());
    EXPECT_TRUE(gui->regionCaptionDialog().isEnabled());
}

}  // namespace
}  // namespace molvera::test
