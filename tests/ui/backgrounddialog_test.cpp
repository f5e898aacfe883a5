// The background dialog on the running program: its controls reach the session's form
// (the rules are tested there), and what only the windows show of the two Optimise
// buttons: the busy state, the boxes following the trials, the plot repainted.
#include "ui/backgrounddialog.h"

#include <functional>
#include <set>
#include <tuple>

#include <QComboBox>
#include <QGuiApplication>
#include <QTimer>

#include "base/numtext.h"
#include "spectral/background.h"
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
    void Choose(const char* name, const char* text) {
        Child<QComboBox>(dialog(), name)->setCurrentText(QString::fromLatin1(text));
    }
    std::string Box(const char* name) { return Text(dialog(), name); }
    const Region& reg() { return project().Regions[3]; }
    // The busy state: hourglass, and no window takes input.
    bool Busy() {
        const QCursor* c = QGuiApplication::overrideCursor();
        return c && c->shape() == Qt::WaitCursor && !main().isEnabled() && !region().isEnabled() &&
               !dialog().isEnabled();
    }
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

TEST_F(BackgroundDialogTest, ControlsReachTheRegionAndTheAreaComesBack) {
    EXPECT_FALSE(dialog().isModal());
    EXPECT_EQ(dialog().windowTitle(), QStringLiteral("Region 3"));
    EXPECT_EQ(Box("highBEText"), FormatGeneral(reg().MaxBE));
    Type(dialog(), "lowBEText", "270");
    Type(dialog(), "highBEText", "295.5");
    Choose("averagePoints", "5");
    Choose("backgroundType", "Tougaard");
    Type(dialog(), "tougaardB1Text", "2500");
    Click(dialog(), "acceptButton");
    const Region& r = reg();
    EXPECT_EQ(std::tuple(r.BackgroundLowBE, r.BackgroundHighBE, r.EndPointAverage, r.BackgroundType,
                         r.BackgroundParameter),
              std::tuple(270.0f, 295.5f, Int16{5}, BackgroundKind::Tougaard, 2500.0f));
    EXPECT_EQ(Box("areaText"), FormatGeneral(static_cast<float>(NetArea(r))));
    Type(dialog(), "shirleySlopeText", "0.5");
    Choose("backgroundType", "Shirley");
    Type(dialog(), "lowBEText", "100");  // refused: the box is corrected, with a beep
    Click(dialog(), "acceptButton");
    EXPECT_EQ(Box("lowBEText"), FormatGeneral(reg().MinBE));
    EXPECT_EQ(sink.beeps, 1);
    Click(dialog(), "acceptButton");
    EXPECT_EQ(r.BackgroundParameter, 0.5f);
    Click(dialog(), "closeButton");
    EXPECT_FALSE(dialog().isVisible());
}

TEST_F(BackgroundDialogTest, TougaardOptimiseRunsBusyWithTheBoxFollowingTheTrials) {
    Choose("backgroundType", "Tougaard");
    std::set<std::string> shown;
    bool busyEverywhere = true;
    int probes = 0;
    {
        Probe probe([&] {
            ++probes;
            shown.insert(Box("tougaardB1Text"));
            busyEverywhere = busyEverywhere && Busy();
        });
        Click(dialog(), "tougaardB1SearchButton");
    }
    EXPECT_GE(probes, 57);
    EXPECT_TRUE(busyEverywhere);
    EXPECT_GT(shown.size(), 10u);  // the box showed the trial values as they ran
    EXPECT_EQ(Box("tougaardB1Text"), FormatGeneral(reg().BackgroundParameter));
    EXPECT_EQ(Box("areaText"), FormatGeneral(static_cast<float>(NetArea(reg()))));
    EXPECT_TRUE(!QGuiApplication::overrideCursor() && main().isEnabled() && region().isEnabled() &&
                dialog().isEnabled());
}

TEST_F(BackgroundDialogTest, ShirleySlopeSearchShowsEveryTrialAndPaintsThePlot) {
    // Over the whole C 1s range the Shirley background lies above the falling
    // high-energy tail, so the search has something to do.
    Click(dialog(), "acceptButton");
    std::vector<std::string> slopes;
    const int paintsBefore = region().Plot()->PaintCount();
    {
        Probe probe([&] {
            if (slopes.empty() || slopes.back() != Box("shirleySlopeText"))
                slopes.push_back(Box("shirleySlopeText"));
        });
        Click(dialog(), "shirleySlopeSearchButton");
    }
    // At least one doubling and the 21 bisection steps, each shown and painted.
    ASSERT_GE(slopes.size(), 22u);
    EXPECT_GE(region().Plot()->PaintCount() - paintsBefore, 22);
    EXPECT_EQ(slopes.back(), FormatGeneral(reg().BackgroundParameter));
}

}  // namespace
}  // namespace molvera::test
