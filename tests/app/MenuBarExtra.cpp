#include "app/MenuBarExtra.h"

#include "support/ModelBench.h"
#include "ui/panel/PanelWindow.h"

#include <QApplication>
#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

struct SilentHaptics final : HapticPerformer
{
    void performLevelChange() override {}
};

struct PopupPlacement final : PanelPlacement
{
    bool isHeld = false;

    Manner manner() const override { return Manner::Popup; }
    bool hasTransparency() const override { return true; }
    bool isButtonHeld() const override { return isHeld; }
    void anchor(QWindow &, std::optional<QPoint>) override {}
};

struct IdleUpdaterController final : UpdaterController
{
    void setAutomaticallyChecksForUpdates(bool) override {}
    void setUpdateCheckInterval(double) override {}
    void checkForUpdates() override {}
    bool canCheckForUpdates() const override { return true; }
};

struct FakeTrayIcon final : TrayIcon
{
    explicit FakeTrayIcon(std::string &shownToolTip) : toolTip(shownToolTip) {}

    std::string &toolTip;

    Presence presence() const override { return Presence::Shown; }
    void setMenu(std::vector<TrayMenuItem>) override {}
    void setToolTip(std::string text) override { toolTip = std::move(text); }
};

} // namespace

class MenuBarExtraTest : public QObject
{
    Q_OBJECT

    struct Bench : ModelBench
    {
        using ModelBench::ModelBench;

        SparkleUpdater updater{[] { return std::make_unique<IdleUpdaterController>(); }, userDefaults};
        SilentHaptics haptics;
        PopupPlacement placement;
        std::string toolTip;
        MenuBarExtra extra{{*model, updater, executor, haptics, placement,
                            [this](TrayIcon::Callbacks) { return std::make_unique<FakeTrayIcon>(toolTip); }, [] {},
                            [] {}}};

        static PanelWindow *panel()
        {
            const auto windows = QApplication::topLevelWidgets();
            for (auto *window : windows) {
                if (auto *panel = qobject_cast<PanelWindow *>(window); panel != nullptr && panel->isVisible())
                    return panel;
            }
            return nullptr;
        }
        /// How often the displays were written at a time at which the maintenance loop does not.
        std::size_t writes()
        {
            executor.runReady();
            return displays.takeWrites().size();
        }
    };

private Q_SLOTS:
    void writesTheTintAgainAroundThePanel();
    void leavesNeutralDisplaysAlone();
    void tellsTheTemperatureBesideTheIcon();
    void opensAndClosesByTheSameIcon();
};

void MenuBarExtraTest::writesTheTintAgainAroundThePanel()
{
    Bench bench(3400);

    bench.extra.toggle({});
    QVERIFY(bench.writes() > 0);
    // The loop writes every 2 s of its own: what counts is what comes on top of it.
    bench.executor.advance(2s);
    const auto ofTheLoop = bench.writes();
    QTest::keyClick(Bench::panel(), Qt::Key_Escape);
    QCOMPARE(bench.writes(), 0U);
    bench.executor.advance(600ms);
    const auto afterHalfASecond = bench.writes();
    QVERIFY(afterHalfASecond > 0);
    bench.executor.advance(1300ms);
    QVERIFY(bench.writes() <= ofTheLoop);
    bench.executor.advance(200ms);
    QVERIFY(bench.writes() >= afterHalfASecond);
}

void MenuBarExtraTest::leavesNeutralDisplaysAlone()
{
    Bench bench(6500);

    bench.extra.toggle({});
    QTest::keyClick(Bench::panel(), Qt::Key_Escape);
    bench.executor.advance(3s);

    QCOMPARE(bench.writes(), 0U);
}

void MenuBarExtraTest::tellsTheTemperatureBesideTheIcon()
{
    Bench bench(3400);
    QCOMPARE(bench.toolTip, "3400K (Halogen)");
    bench.model->setTemperature(6500);
    QCOMPARE(bench.toolTip, "Normal (Daylight)");
}

void MenuBarExtraTest::opensAndClosesByTheSameIcon()
{
    Bench bench(3400);
    bench.extra.toggle({});
    QVERIFY(Bench::panel() != nullptr);
    bench.extra.toggle({});
    QVERIFY(Bench::panel() == nullptr);
    bench.placement.isHeld = true; // that click is a slow one
    bench.executor.advance(1s);
    bench.placement.isHeld = false;
    bench.executor.advance(100ms);
    bench.extra.toggle({}); // its release
    QVERIFY(Bench::panel() == nullptr);
    bench.executor.advance(1s);
    bench.extra.toggle({});
    QVERIFY(Bench::panel() != nullptr);
}

QTEST_MAIN(MenuBarExtraTest)
#include "MenuBarExtra.moc"
