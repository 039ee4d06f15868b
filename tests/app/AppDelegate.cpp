#include "app/AppDelegate.h"

#include "protocol/Notifications.h"
#include "support/CapturedConsole.h"
#include "support/ModelBench.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

class AppDelegateTest : public QObject
{
    Q_OBJECT

    struct Bench : ModelBench, RunningApplications
    {
        FakeMainBundle bundle{""};
        std::vector<RunningApplication> applications = {{100}};
        std::int64_t activated = 0;
        int checks = 0;
        int terminations = 0;
        int broughtForward = 0;
        Observation checkObservation =
            notifications.observe(notifications::checkScheduleNow, [this](const Notification &) { ++checks; });
        std::optional<AppDelegate> delegate;

        Bench() { bundle.values["CFBundleIdentifier"] = "org.example.Program"; }
        std::vector<RunningApplication> withIdentifier(std::string_view) override { return applications; }
        void activate(const RunningApplication &application) override { activated = application.processIdentifier; }
        std::int64_t currentProcessIdentifier() const override { return 100; }
        void launch()
        {
            delegate.emplace(AppDelegate::Ports{.mainBundle = bundle,
                                                .runningApplications = *this,
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
    void aSecondCopyActivatesTheFirstWhichComesForward()
    {
        Bench bench;
        bench.applications = {{100}, {42}, {43}};
        bench.launch();
        QCOMPARE(bench.terminations, 1);
        QCOMPARE(bench.activated, std::int64_t{42});
        QCOMPARE(bench.distributed.posts.at(0).first.name, std::string("com.ambertide.instance"));
        bench.executor.advance(1min);
        QCOMPARE(bench.checks, 0);

        bench.applications = {{100}};
        bench.launch();
        bench.distributed.post(notifications::withoutUserInfo(notifications::instance), Delivery::standard);
        QCOMPARE(bench.broughtForward, 1);
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

    void aWholeTemperatureIsStoredAndPassedOnWhateverTheRange()
    {
        Bench bench;
        bench.launch();
        std::vector<std::optional<UserInfo>> passedOn;
        const auto observation = bench.notifications.observe(
            notifications::updateTemperature, [&](const Notification &each) { passedOn.push_back(each.userInfo); });
        for (const double number : {9000.0, 3450.5})
            bench.distributed.post({notifications::updateTemperature, UserInfo{{"temperature", number}}},
                                   Delivery::standard);
        bench.executor.runReady();
        QCOMPARE(bench.userDefaults.doubleValue("Ambertide.Temperature"), 9000.0);
        QVERIFY(passedOn.size() == 1 && passedOn[0] == (UserInfo{{"temperature", std::int64_t{9000}}}));

        UserInfo hostile = {{"a\nbreak", std::string(1'000'000, 'x')}};
        for (int i = 0; i < 1000; ++i)
            hostile.emplace("key" + std::to_string(i), OpaqueValue{std::string(255, '(')});
        const CapturedConsole console;
        for (int i = 0; i < 10'000; ++i)
            bench.distributed.post({notifications::updateTemperature, std::exchange(hostile, {})}, Delivery::standard);
        bench.executor.advance(5s);
        QVERIFY(console.lines.size() < 50 && console.lines.back().starts_with("Received 99"));
        for (const auto &line : console.lines)
            QVERIFY(line.size() < 1000 && line.find('\n') == std::string::npos);
        QVERIFY(console.lines.front().ends_with("... 997 more}}"));
    }
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "AppDelegate.moc"
