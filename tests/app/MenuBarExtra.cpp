#include "app/MenuBarExtra.h"

#include "protocol/Notifications.h"
#include "support/ModelBench.h"
#include "ui/panel/PanelWindow.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

struct FakeDesktop final : HapticPerformer, PanelPlacement
{
    bool isHeld = false;

    void performLevelChange() override {}
    Manner manner() const override { return Manner::Popup; }
    bool hasTransparency() const override { return true; }
    bool isButtonHeld() const override { return isHeld; }
    int cornerRadius() const override { return 12; }
    void anchor(QWindow &, const QMargins &, std::optional<QPoint>) override {}
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
    explicit FakeTrayIcon(std::string &shown) : toolTip(shown) {}

    std::string &toolTip;

    Presence presence() const override { return Presence::Shown; }
    void setMenu(std::vector<TrayMenuItem>) override {}
    void setToolTip(std::string text) override { toolTip = text; }
};

} // namespace

class MenuBarExtraTest : public QObject
{
    Q_OBJECT

    struct Bench : ModelBench
    {
        Bench() : ModelBench(3400) {}

        SparkleUpdater updater{[] { return std::make_unique<IdleUpdaterController>(); }, userDefaults};
        FakeDesktop desktop;
        std::string toolTip;
        bool hasOpenedSchedule = false;
        MenuBarExtra extra{{.viewModel = *model,
                            .updater = updater,
                            .executor = executor,
                            .haptics = desktop,
                            .placement = desktop,
                            .createTrayIcon = [this](auto) { return std::make_unique<FakeTrayIcon>(toolTip); },
                            .openSettings = [] {},
                            .openSchedule = [this] { hasOpenedSchedule = true; },
                            .quit = [] {}}};

        static QWidget *panel()
        {
            const auto windows = QApplication::topLevelWidgets();
            const auto isPanel = [](auto *each) { return qobject_cast<PanelWindow *>(each) && each->isVisible(); };
            const auto found = std::ranges::find_if(windows, isPanel);
            return found == windows.end() ? nullptr : *found;
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
        QCOMPARE(bench.toolTip, "3400K (Halogen)");
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
        QCOMPARE(bench.toolTip, "Normal (Daylight)");
        bench.writesIn(5s);
        Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QCOMPARE(bench.writesIn(0s), 0U);
    }

    void saysWhatKeepsTheDisplaysAsTheyAre()
    {
        Bench bench;
        bench.extra.toggle({});
        const auto shows = [](const char *text) {
            const auto widgets = Bench::panel()->findChildren<QWidget *>();
            return std::ranges::count_if(widgets, [text](const auto *each) {
                       return each->isVisible() && each->property("text").toString() == QLatin1String(text);
                   }) == 1;
        };
        const char *refusal = "None of the displays here can be tinted.";
        bench.displays.tintRefusal = {TintRefusal::Reason::Displays, "no tables"};
        bench.notifications.post(notifications::withoutUserInfo(notifications::checkScheduleNow));
        QVERIFY(shows(refusal) && bench.toolTip == refusal);
        bench.distributed.post(notifications::withoutUserInfo(notifications::getTemperature), Delivery::standard);
        QVERIFY(bench.distributed.posts.back().first.userInfo->at("refusal") == UserInfoValue("no tables"));
        bench.displays.tintRefusal.reset();
        bench.notifications.post(notifications::withoutUserInfo(notifications::checkScheduleNow));
        QVERIFY(!shows(refusal) && bench.toolTip == "3400K (Halogen)");

        const char *link = "Nothing is scheduled yet...";
        QVERIFY(!shows(link));
        bench.model->setScheduleEnabled(true);
        QVERIFY(shows(link));
        for (auto *each : Bench::panel()->findChildren<QPushButton *>()) {
            if (each->text() == QLatin1String(link))
                each->click();
        }
        QVERIFY(bench.hasOpenedSchedule && Bench::panel() == nullptr);
    }

    void opensAndClosesByTheSameIcon()
    {
        Bench bench;
        bench.extra.toggle({});
        QVERIFY(Bench::panel() != nullptr);
        bench.extra.toggle({});
        QVERIFY(Bench::panel() == nullptr);
        bench.desktop.isHeld = true; // that click is a slow one
        bench.executor.advance(1s);
        bench.desktop.isHeld = false;
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
