// The background dialog on the running program: opening from the menu, Accept with its
// corrections, the two Optimise buttons and the busy state.
#include "ui/backgrounddialog.h"

#include <set>

#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include "base/numtext.h"
#include "spectral/background.h"
#include "spectral/bgoptimise.h"
#include "ui/gui_fixture.h"
#include "ui/plotwidget.h"

namespace molvera::test {
namespace {

class BackgroundDialogTest : public GuiTest {
protected:
    void SetUp() override {
        GuiTest::SetUp();
        main().RegionButton(3)->click();
        ImportSample();
        Menu("backgroundAction");
    }
    ui::BackgroundDialog& dialog() { return gui->backgroundDialog(); }
    QLineEdit* Box(const char* name) { return dialog().findChild<QLineEdit*>(name); }
    QComboBox* Choice(const char* name) { return dialog().findChild<QComboBox*>(name); }
    void Click(const char* name) { dialog().findChild<QPushButton*>(name)->click(); }
    std::string Text(const char* name) { return Box(name)->text().toStdString(); }
    Region& reg() { return project().Regions[3]; }
};

// Calls `probe` at every pass of the event loop while a button's command runs.
class Probe {
public:
    explicit Probe(std::function<void()> probe) {
        QObject::connect(&timer_, &QTimer::timeout, std::move(probe));
        timer_.start(0);
    }

private:
    QTimer timer_;
};

TEST_F(BackgroundDialogTest, OpensFromTheMenuWithTheDataExtent) {
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_FALSE(dialog().isModal());
    EXPECT_EQ(dialog().windowTitle(), QStringLiteral("Region 3"));
    EXPECT_EQ(Text("lowBEText"), FormatGeneral(reg().MinBE));
    EXPECT_EQ(Text("highBEText"), FormatGeneral(reg().MaxBE));
    EXPECT_EQ(Choice("averagePoints")->currentText(), QStringLiteral("None"));
    EXPECT_EQ(Choice("backgroundType")->currentText(), QStringLiteral("Shirley"));
    EXPECT_EQ(Text("tougaardB1Text"), "3000");
    EXPECT_EQ(Text("areaText"), "-----");
    QStringList types;
    QComboBox* type = Choice("backgroundType");
    for (int i = 0; i < type->count(); ++i) types << type->itemText(i);
    EXPECT_EQ(types, (QStringList{"Shirley", "Linear", "Tougaard"}));
    EXPECT_EQ(Choice("averagePoints")->count(), 5);

    Click("closeButton");
    EXPECT_FALSE(dialog().isVisible());
    EXPECT_FALSE(IsSet(reg().HasBackground));
}

TEST_F(BackgroundDialogTest, LowBEBelowTheDataIsCorrectedThenAccepted) {
    Box("lowBEText")->setText(QStringLiteral("100"));
    Box("highBEText")->setText(QStringLiteral("295.5"));
    Click("acceptButton");
    EXPECT_EQ(sink.beeps, 1);
    EXPECT_EQ(Text("lowBEText"), FormatGeneral(reg().MinBE));
    EXPECT_EQ(Text("highBEText"), "295.5");
    EXPECT_FALSE(IsSet(reg().HasBackground));
    EXPECT_EQ(Text("areaText"), "-----");

    Click("acceptButton");
    EXPECT_EQ(sink.beeps, 1);
    ASSERT_TRUE(IsSet(reg().HasBackground));
    EXPECT_EQ(reg().BackgroundLowBE, reg().MinBE);
    EXPECT_EQ(reg().BackgroundHighBE, 295.5f);
    EXPECT_EQ(Text("shirleySlopeText"), "0");  // an empty slope box reads as 0
    EXPECT_NE(Text("areaText"), "-----");
    EXPECT_EQ(Text("areaText"), FormatGeneral(static_cast<float>(NetArea(reg()))));
    EXPECT_TRUE(dialog().isVisible());
}

TEST_F(BackgroundDialogTest, TougaardB1ZeroBecomes3000) {
    Choice("backgroundType")->setCurrentText(QStringLiteral("Tougaard"));
    Box("tougaardB1Text")->setText(QStringLiteral("0"));
    Click("acceptButton");
    EXPECT_EQ(Text("tougaardB1Text"), "3000");
    EXPECT_EQ(reg().BackgroundType, BackgroundKind::Tougaard);
    EXPECT_EQ(reg().BackgroundParameter, 3000.0f);
    EXPECT_EQ(sink.beeps, 0);

    // Reopening shows what was stored.
    Click("closeButton");
    Menu("backgroundAction");
    EXPECT_EQ(Choice("backgroundType")->currentText(), QStringLiteral("Tougaard"));
    EXPECT_EQ(Text("tougaardB1Text"), "3000");
}

TEST_F(BackgroundDialogTest, UnknownTypeTextIsReplacedByShirley) {
    Choice("backgroundType")->setEditText(QStringLiteral("Shirly"));
    Click("acceptButton");
    EXPECT_EQ(sink.beeps, 1);
    EXPECT_EQ(Choice("backgroundType")->currentText(), QStringLiteral("Shirley"));
    EXPECT_FALSE(IsSet(reg().HasBackground));
}

TEST_F(BackgroundDialogTest, TougaardOptimiseWithShirleyOnlyBeeps) {
    Click("tougaardB1SearchButton");
    EXPECT_EQ(sink.beeps, 1);
    EXPECT_FALSE(IsSet(reg().HasBackground));
    EXPECT_EQ(Text("tougaardB1Text"), "3000");
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(main().isEnabled());
    EXPECT_TRUE(region().isEnabled());
    EXPECT_TRUE(dialog().isEnabled());
    EXPECT_TRUE(IsSet(project().Idle));
}

TEST_F(BackgroundDialogTest, TougaardOptimiseRunsBusyWithTheBoxFollowingTheTrials) {
    Choice("backgroundType")->setCurrentText(QStringLiteral("Tougaard"));
    std::set<std::string> shown;
    bool busyEverywhere = true;
    int probes = 0;
    {
        Probe probe([&] {
            ++probes;
            shown.insert(Text("tougaardB1Text"));
            const QCursor* c = QGuiApplication::overrideCursor();
            busyEverywhere = busyEverywhere && c && c->shape() == Qt::WaitCursor &&
                             !main().isEnabled() && !region().isEnabled() &&
                             !dialog().isEnabled() && !IsSet(project().Idle);
        });
        Click("tougaardB1SearchButton");
    }
    EXPECT_GE(probes, 57);
    EXPECT_TRUE(busyEverywhere);
    EXPECT_GT(shown.size(), 10u);  // the box showed the trial values as they ran
    EXPECT_EQ(sink.beeps, 0);

    ASSERT_TRUE(IsSet(reg().HasBackground));
    EXPECT_EQ(reg().BackgroundType, BackgroundKind::Tougaard);
    const float b1 = reg().BackgroundParameter;
    EXPECT_EQ(Text("tougaardB1Text"), FormatGeneral(b1));
    EXPECT_GE(b1, 3000 * 0.1f * 0.91f * 0.991f * 0.999f);
    EXPECT_LE(b1, 3000 * 1.9f * 1.09f * 1.009f * 1.001f);
    EXPECT_EQ(Text("areaText"), FormatGeneral(static_cast<float>(NetArea(reg()))));

    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(main().isEnabled());
    EXPECT_TRUE(region().isEnabled());
    EXPECT_TRUE(dialog().isEnabled());
    EXPECT_TRUE(IsSet(project().Idle));
}

TEST_F(BackgroundDialogTest, ShirleySlopeSearchShowsEveryTrialAndPaintsThePlot) {
    // Over the whole C 1s range the Shirley background lies above the falling
    // high-energy tail, so the search has something to do.
    Click("acceptButton");
    ASSERT_TRUE(IsSet(reg().HasBackground));
    ASSERT_TRUE(BackgroundCrosses(reg()));

    std::vector<std::string> slopes;
    const int paintsBefore = region().Plot()->PaintCount();
    {
        Probe probe([&] {
            if (slopes.empty() || slopes.back() != Text("shirleySlopeText"))
                slopes.push_back(Text("shirleySlopeText"));
        });
        Click("shirleySlopeSearchButton");
    }
    const int paints = region().Plot()->PaintCount() - paintsBefore;
    // At least one doubling and the 21 bisection steps, each shown and painted.
    ASSERT_GE(slopes.size(), 22u);
    EXPECT_EQ(slopes[0], "2");  // slope 0 starts from 1, doubled
    EXPECT_GE(paints, 22);

    const float s = reg().BackgroundParameter;
    EXPECT_GT(s, 0.0f);
    EXPECT_EQ(Text("shirleySlopeText"), FormatGeneral(s));
    EXPECT_EQ(slopes.back(), FormatGeneral(s));
    EXPECT_EQ(sink.beeps, 0);
}

TEST_F(BackgroundDialogTest, HiddenOnRegionChangeAndDisabledDuringAFit) {
    gui->host().FitStarted();
    EXPECT_FALSE(dialog().isEnabled());
    gui->host().FitEnded();
    EXPECT_TRUE(dialog().isEnabled());

    main().RegionButton(4)->click();
    EXPECT_FALSE(dialog().isVisible());
}

}  // namespace
}  // namespace molvera::test
