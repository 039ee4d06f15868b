#include "app/AppDelegate.h"

#include "protocol/Notifications.h"
#include "support/CapturedConsole.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeMainBundle.h"
#include "support/FakeSystemWake.h"
#include "support/FakeTaskExecutor.h"
#include "support/FakeUserDefaults.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

using Lines = std::vector<std::string>;

namespace {

struct FakeRunningApplications final : RunningApplications
{
    std::vector<RunningApplication> applications = {{100}};
    std::vector<std::int64_t> activatedProcesses;

    std::vector<RunningApplication> withIdentifier(std::string_view) override { return applications; }
    void activate(const RunningApplication &application) override
    {
        activatedProcesses.push_back(application.processIdentifier);
    }
    std::int64_t currentProcessIdentifier() const override { return 100; }
};

} // namespace

class AppDelegateTest : public QObject
{
    Q_OBJECT

    struct Bench
    {
        CapturedConsole console;
        FakeMainBundle bundle{std::filesystem::path()};
        FakeRunningApplications running;
        NotificationCenter notifications;
        FakeDistributedNotificationCenter distributed;
        FakeSystemWake wake;
        FakeUserDefaults userDefaults;
        FakeTaskExecutor executor;
        int checks = 0;
        int terminations = 0;
        int broughtForward = 0;
        Observation checkObservation =
            notifications.observe(notifications::checkScheduleNow, [this](const Notification &) { ++checks; });
        std::optional<AppDelegate> delegate;

        Bench() { bundle.values["CFBundleIdentifier"] = "org.example.Program"; }
        void launch()
        {
            delegate.emplace(AppDelegate::Ports{.mainBundle = bundle,
                                                .runningApplications = running,
                                                .notifications = notifications,
                                                .distributedNotifications = distributed,
                                                .wake = wake,
                                                .userDefaults = userDefaults,
                                                .executor = executor,
                                                .terminate = [this] { ++terminations; },
                                                .bringSettingsForward = [this] { ++broughtForward; }});
            delegate->applicationDidFinishLaunching();
        }
    };

private Q_SLOTS:
    void aSecondCopyActivatesTheFirstAndTerminates()
    {
        Bench bench;
        bench.running.applications = {{100}, {42}, {43}};
        bench.launch();
        QCOMPARE(bench.terminations, 1);
        QCOMPARE(bench.running.activatedProcesses, (std::vector<std::int64_t>{42}));
        QCOMPARE(bench.console.lines, (Lines{"Another instance of Ambertide is already running (PID: 42)"}));
        QCOMPARE(bench.distributed.posts.at(0).first.name, std::string("com.ambertide.instance"));
        bench.executor.advance(1min);
        QCOMPARE(bench.checks, 0);
    }

    void onlyACopyWithAnIdentifierComesForwardForAnother()
    {
        for (const bool hasIdentifier : {true, false}) {
            Bench bench;
            if (!hasIdentifier) {
                bench.bundle.values.clear();
                bench.running.applications = {{42}};
            }
            bench.launch();
            QCOMPARE(bench.console.lines.front() == "Warning: Could not get bundle identifier", !hasIdentifier);
            QCOMPARE(bench.console.lines.back(), std::string("Registering for CLI temperature notifications..."));
            bench.distributed.post(notifications::withoutUserInfo(notifications::instance), Delivery::standard);
            QCOMPARE(bench.broughtForward, hasIdentifier ? 1 : 0);
        }
    }

    void theScheduleIsCheckedAtOnceEveryFiveSecondsAndAfterWakeUntilTheEnd()
    {
        Bench bench;
        bench.launch();
        bench.executor.runReady();
        QCOMPARE(bench.checks, 1);
        bench.executor.advance(25s);
        QCOMPARE(bench.checks, 6);
        bench.wake.wakeUp();
        QCOMPARE(bench.checks, 7);
        bench.delegate->applicationWillTerminate();
        bench.wake.wakeUp();
        bench.executor.advance(1min);
        QCOMPARE(bench.checks, 7);

        bench.launch();
        const auto ending = Task::startOnMain(bench.executor, [&bench](TaskContext) -> Async {
            bench.delegate.reset(); // while a check is on its way to the main thread
            co_return;
        });
        bench.executor.runReady();
        QCOMPARE(bench.checks, 7);
    }

    void aWholeTemperatureIsStoredAndPassedOn()
    {
        for (const double number : {9000.0, 3450.5}) { // whatever the range
            const bool isWhole = number == 9000;
            Bench bench;
            bench.launch();
            std::vector<Notification> passedOn;
            const auto observation = bench.notifications.observe(
                notifications::updateTemperature, [&](const Notification &each) { passedOn.push_back(each); });
            bench.console.lines.clear();
            bench.distributed.post({notifications::updateTemperature, UserInfo{{"temperature", number}}},
                                   Delivery::standard);
            bench.executor.runReady();

            const auto userInfo = "{temperature = " + QByteArray::number(number).toStdString() + "}";
            const Lines lines = {
                "Received CLI temperature change notification: {name = Ambertide.UpdateTemperature, userInfo = " +
                    userInfo + "}",
                isWhole ? "Setting temperature to 9000K" : "No valid temperature found in notification: " + userInfo};
            QCOMPARE(bench.console.lines, lines);
            QCOMPARE(bench.userDefaults.doubleValue("Ambertide.Temperature"), isWhole ? 9000.0 : 0.0);
            QCOMPARE(passedOn.size(), std::size_t(isWhole ? 1 : 0));
            if (isWhole)
                QVERIFY(passedOn[0].userInfo == (UserInfo{{"temperature", std::int64_t{9000}}}));
        }
    }
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "AppDelegate.moc"
