#include "app/AppDelegate.h"
#include "model/DefaultsKeys.h"
#include "model/Notifications.h"
#include "platform/Console.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeSystemWake.h"
#include "support/FakeTaskExecutor.h"
#include "support/FakeUserDefaults.h"

#include <QTest>

#include <optional>
#include <string>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

class FakeBundle final : public MainBundle
{
public:
    std::optional<std::string> bundleIdentifier = "org.example.Program";

    std::filesystem::path path() const override { return {}; }
    std::optional<std::string> information(std::string_view key) const override
    {
        return key == "CFBundleIdentifier" ? bundleIdentifier : std::nullopt;
    }
};

class FakeRunning final : public RunningApplications
{
public:
    std::vector<RunningApplication> running = {{100}};
    std::vector<std::int64_t> activated;

    std::vector<RunningApplication> withIdentifier(std::string_view identifier) override
    {
        return identifier == "org.example.Program" ? running : std::vector<RunningApplication>();
    }
    void activate(const RunningApplication &application) override { activated.push_back(application.processIdentifier); }
    std::int64_t currentProcessIdentifier() const override { return 100; }
};

} // namespace

using Lines = std::vector<std::string>;

class AppDelegateTest : public QObject
{
    Q_OBJECT

    struct Bench
    {
        FakeBundle bundle;
        FakeRunning running;
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

        void launch()
        {
            delegate.emplace(AppDelegate::Ports{bundle, running, notifications, distributed, wake, userDefaults, executor,
                                                [this] { ++terminations; }, [this] { ++broughtForward; }});
            delegate->applicationDidFinishLaunching();
            executor.runReady();
        }
        void post(std::string_view name, std::optional<UserInfo> userInfo = {})
        {
            distributed.post({.name = std::string(name), .userInfo = std::move(userInfo)}, Delivery::standard);
            executor.runReady();
        }
    };
    Lines printed;

private Q_SLOTS:
    void init()
    {
        printed.clear();
        console::redirect([this](std::string_view line) { printed.emplace_back(line); });
    }
    void cleanup() { console::redirect({}); }

    void aSecondCopyActivatesTheFirstAndTerminates()
    {
        Bench bench;
        bench.running.running = {{100}, {42}, {43}};
        bench.launch();
        QCOMPARE(bench.terminations, 1);
        QCOMPARE(bench.running.activated, (std::vector<std::int64_t>{42}));
        QCOMPARE(printed, (Lines{"Another instance of Ambertide is already running (PID: 42)"}));
        QCOMPARE(bench.distributed.posts.size(), std::size_t(1));
        QCOMPARE(bench.distributed.posts[0].first.name, std::string("com.ambertide.instance"));
        bench.executor.advance(1min);
        QCOMPARE(bench.checks, 0);
    }

    void theFirstCopyComesForwardWhenASecondIsStarted()
    {
        Bench bench;
        bench.launch();
        bench.post(notifications::instance);
        QCOMPARE(bench.broughtForward, 1);
        QCOMPARE(bench.terminations, 0);
    }

    void withoutAnIdentifierItRunsAsTheOnlyCopy()
    {
        Bench bench;
        bench.bundle.bundleIdentifier.reset();
        bench.running.running = {{100}, {42}};
        bench.launch();
        QCOMPARE(printed, (Lines{"Warning: Could not get bundle identifier",
                                 "Registering for CLI temperature notifications..."}));
        bench.post(notifications::instance);
        QCOMPARE(bench.broughtForward, 0);
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
        QCOMPARE(bench.executor.sleeperCount(), std::size_t(0));
    }

    void aRequestOfTheCommandLineToolIsStoredAndPassedOn_data()
    {
        QTest::addColumn<double>("number");
        QTest::addColumn<QByteArray>("kelvin");
        QTest::newRow("whole") << 3400.0 << QByteArray("3400");
        QTest::newRow("out of range") << 9000.0 << QByteArray("9000");
        QTest::newRow("negative") << -1.0 << QByteArray("-1");
        QTest::newRow("fraction") << 3450.5 << QByteArray();
    }
    void aRequestOfTheCommandLineToolIsStoredAndPassedOn()
    {
        QFETCH(double, number);
        QFETCH(QByteArray, kelvin);
        const auto shown = std::to_string(number);
        Bench bench;
        bench.launch();
        std::vector<Notification> passedOn;
        const auto observation = bench.notifications.observe(
            "Ambertide.UpdateTemperature", [&](const Notification &notification) { passedOn.push_back(notification); });
        printed.clear();
        bench.post(notifications::updateTemperature, UserInfo{{"temperature", number}});

        const auto userInfo = "{temperature = " + shown + "}";
        const auto received = "Received CLI temperature change notification: {name = Ambertide.UpdateTemperature, "
                              "userInfo = " + userInfo + "}";
        if (kelvin.isEmpty()) {
            QCOMPARE(printed, (Lines{received, "No valid temperature found in notification: " + userInfo}));
            QVERIFY(passedOn.empty() && bench.userDefaults.values.empty());
            return;
        }
        QCOMPARE(printed, (Lines{received, "Setting temperature to " + kelvin.toStdString() + "K"}));
        QVERIFY(bench.userDefaults.values.at("Ambertide.Temperature") ==
                decltype(bench.userDefaults.values)::mapped_type(kelvin.toLongLong()));
        QCOMPARE(passedOn.size(), std::size_t(1));
        QVERIFY(passedOn[0].userInfo == (UserInfo{{"temperature", std::int64_t{kelvin.toLongLong()}}}));
    }

    void aRequestWithoutUserInfoIsDescribedAsEmpty()
    {
        Bench bench;
        bench.launch();
        printed.clear();
        bench.post(notifications::updateTemperature);
        QCOMPARE(printed, (Lines{"Received CLI temperature change notification: {name = Ambertide.UpdateTemperature}",
                                 "No valid temperature found in notification: {}"}));
    }
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "AppDelegate.moc"
