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
    explicit FakeTrayIcon(std::string &shownTexts) : texts(shownTexts) {}

    std::string &texts;

    Presence presence() const override { return Presence::Shown; }
    void setMenu(std::vector<TrayMenuItem> items) override
    {
        for (const auto &item : items)
            texts += item.text + (item.isEnabled ? "|" : " (disabled)|");
    }
    void setToolTip(std::string text) override { texts += text + '|'; }
};

} // namespace

class MenuBarExtraTest : public QObject
{
    Q_OBJECT

    struct Bench : ModelBench
    {
        Bench() : ModelBench(3400) {}

        SparkleUpdater updater{[] { return std::make_unique<IdleUpdaterController>(); }, userDefaults};
        SilentHaptics haptics;
        PopupPlacement placement;
        std::string texts; ///< of the icon, as they came
        MenuBarExtra extra{{.viewModel = *model,
                            .updater = updater,
                            .executor = executor,
                            .haptics = haptics,
                            .placement = placement,
                            .createTrayIcon = [this](auto) { return std::make_unique<FakeTrayIcon>(texts); },
                            .openSettings = [] {},
                            .quit = [] {}}};

        static PanelWindow *panel()
        {
            const auto windows = QApplication::topLevelWidgets();
            for (auto *window : windows) {
                if (auto *panel = qobject_cast<PanelWindow *>(window); panel != nullptr && panel->isVisible())
                    return panel;
            }
            return nullptr;
        }
        /// How often the displays are written within this time.
        std::size_t writesIn(std::chrono::nanoseconds duration)
        {
            executor.advance(duration);
            return displays.takeWrites().size();
        }
    };

private Q_SLOTS:
    void writesTheTintAgainWhenTheSystemMayHaveResetIt()
    {
        Bench bench;
        bench.extra.toggle({});
        QVERIFY(bench.writesIn(0s) > 0);
        const auto ofTheLoop = bench.writesIn(2s); // what counts is what comes on top of it
        QTest::keyClick(Bench::panel(), Qt::Key_Escape);
        QCOMPARE(bench.writesIn(499ms), 0U);
        QCOMPARE(bench.writesIn(2ms), 1U);
        QVERIFY(bench.writesIn(1400ms) <= ofTheLoop);
        QVERIFY(bench.writesIn(200ms) >= 1U);
        bench.writesIn(1s); // between two passes of the loop
        for (const auto &[state, writes] : {std::pair(Qt::ApplicationInactive, 0U), {Qt::ApplicationActive, 1U}}) {
            Q_EMIT qGuiApp->applicationStateChanged(state);
            QCOMPARE(bench.writesIn(0s), writes);
        }
        bench.model->setTemperature(6500);
        bench.writesIn(5s);
        Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QCOMPARE(bench.writesIn(0s), 0U);
    }

    void tellsTheTemperatureBesideTheIconAndOffersTheMenu()
    {
        Bench bench;
        QCOMPARE(bench.texts, "Settings...|Check for Updates...||Quit Ambertide|3400K (Halogen)|");
        bench.model->setTemperature(6500);
        QVERIFY(bench.texts.ends_with("|Normal (Daylight)|"));
    }

    void opensAndClosesByTheSameIcon()
    {
        Bench bench;
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
};

QTEST_MAIN(MenuBarExtraTest)
#include "MenuBarExtra.moc"
