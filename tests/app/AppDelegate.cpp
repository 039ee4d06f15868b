#include "app/AppDelegate.h"

#include "protocol/DefaultsKeys.h"
#include "protocol/Notifications.h"
#include "support/CapturedConsole.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeMainBundle.h"
#include "support/FakeRunningApplications.h"
#include "support/FakeSystemWake.h"
#include "support/FakeTaskExecutor.h"
#include "support/FakeUserDefaults.h"

#include <QTest>

#include <optional>

using namespace ambertide;
using namespace std::chrono_literals;

using Lines = std::vector<std::string>;

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
            delegate.emplace(AppDelegate::Ports{bundle, running, notifications, distributed, wake, userDefaults,
                                                executor, [this] { ++terminations; }, [this] { ++broughtForward; }});
            delegate->applicationDidFinishLaunching();
            executor.runReady();
        }
        void receive(std::string name, std::optional<UserInfo> userInfo = {})
        {
            distributed.post({std::move(name), std::move(userInfo)}, Delivery::standard);
            executor.runReady();
        }
    };

private Q_SLOTS:
    void aSecondCopyActivatesTheFirstAndTerminates()
    {
        Bench bench;
        bench.running.applications = {{FakeRunningApplications::ownProcess}, {42}, {43}};
        bench.launch();
        QCOMPARE(bench.terminations, 1);
        QCOMPARE(bench.running.activatedProcesses, (std::vector<std::int64_t>{42}));
        QCOMPARE(bench.console.lines, (Lines{"Another instance of Ambertide is already running (PID: 42)"}));
        QCOMPARE(bench.distributed.posts.at(0).first.name, std::string("com.ambertide.instance"));
        bench.executor.advance(1min);
        QCOMPARE(bench.checks, 0);
    }

    void onlyACopyWithAnIdentifierComesForwardForAnother_data()
    {
        QTest::addColumn<bool>("hasIdentifier");
        QTest::newRow("with") << true;
        QTest::newRow("without, it runs as the only copy") << false;
    }
    void onlyACopyWithAnIdentifierComesForwardForAnother()
    {
        QFETCH(bool, hasIdentifier);
        Bench bench;
        if (!hasIdentifier) {
            bench.bundle.values.clear();
            bench.running.applications = {{42}};
        }
        bench.launch();
        QCOMPARE(bench.console.lines.front() == "Warning: Could not get bundle identifier", !hasIdentifier);
        QCOMPARE(bench.console.lines.back(), std::string("Registering for CLI temperature notifications..."));
        bench.receive(notifications::instance);
        QCOMPARE(bench.broughtForward, hasIdentifier ? 1 : 0);
        QCOMPARE(bench.checks, 1);
    }

    void theScheduleIsCheckedAtOnceEveryFiveSecondsAndAfterWakeUntilTheEnd()
    {
        Bench bench;
        bench.launch();
        QCOMPARE(bench.checks, 1);
        bench.executor.advance(25s);
        QCOMPARE(bench.checks, 6);
        bench.wake.wakeUp();
        QCOMPARE(bench.checks, 7);
        bench.delegate->applicationWillTerminate();
        bench.wake.wakeUp();
        bench.executor.advance(1min);
        QCOMPARE(bench.checks, 7);
    }

    void aWholeTemperatureIsStoredAndPassedOn_data()
    {
        QTest::addColumn<double>("number");
        QTest::addColumn<bool>("isWhole");
        QTest::newRow("out of range") << 9000.0 << true;
        QTest::newRow("fraction") << 3450.5 << false;
    }
    void aWholeTemperatureIsStoredAndPassedOn()
    {
        QFETCH(double, number);
        QFETCH(bool, isWhole);
        Bench bench;
        bench.launch();
        std::vector<Notification> passedOn;
        const auto observation =
            bench.notifications.observe(notifications::updateTemperature,
                                        [&](const Notification &notification) { passedOn.push_back(notification); });
        bench.console.lines.clear();
        bench.receive(notifications::updateTemperature, UserInfo{{"temperature", number}});

        const auto userInfo = "{temperature = " + QByteArray::number(number).toStdString() + "}";
        QCOMPARE(
            bench.console.lines,
            (Lines{"Received CLI temperature change notification: {name = Ambertide.UpdateTemperature, userInfo = " +
                       userInfo + "}",
                   isWhole ? "Setting temperature to 9000K"
                           : "No valid temperature found in notification: " + userInfo}));
        QCOMPARE(bench.userDefaults.values.contains(defaults::temperature), isWhole);
        QCOMPARE(passedOn.size(), std::size_t(isWhole ? 1 : 0));
        if (isWhole) {
            QVERIFY(std::get<long long>(bench.userDefaults.values.at("Ambertide.Temperature")) == 9000);
            QVERIFY(passedOn[0].userInfo == (UserInfo{{"temperature", std::int64_t{9000}}}));
        }
    }
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "AppDelegate.moc"
