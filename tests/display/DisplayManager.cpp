#include "display/DisplayManager.h"

#include "adapters/qt/ThreadTaskExecutor.h"
#include "support/Fakes.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <ranges>
#include <thread>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr auto wholeRamp = 3s; ///< longer than the longest road from one temperature to another
constexpr double restored = 0; ///< stands for a restore in a list of shown temperatures

/// The temperature whose tables these are, by their white point, to a tenth of a kelvin.
double temperatureOf(const FakeDisplayServices::Write &write)
{
    if (write.isRestore)
        return restored;
    const auto whitePoint = [](const GammaTables &tables) { return tables.green[255] + tables.blue[255]; };
    const auto ofTenths = [&](int tenths) {
        return whitePoint(DisplayManager::createGammaTables((tenths + 0.5) / 10));
    };
    return *std::ranges::lower_bound(std::views::iota(19000, 66000), whitePoint(write.tables), {}, ofTenths) / 10.0;
}

/// The real executor with a second shrunk to a millisecond.
struct HastyExecutor final : TaskExecutor
{
    ThreadTaskExecutor threads;

    void resume(Continuation continuation) override { threads.resume(std::move(continuation)); }
    void resumeAfter(std::chrono::nanoseconds delay, Continuation continuation) override
    {
        threads.resumeAfter(delay / 1000, std::move(continuation));
    }
    std::chrono::nanoseconds now() const override { return threads.now() * 1000; }
    void resumeOnMain(Continuation continuation) override { threads.resumeOnMain(std::move(continuation)); }
    void wakeCancelled(const TaskState &task) override { threads.wakeCancelled(task); }
    void blockThread(std::chrono::nanoseconds duration) override { threads.blockThread(duration / 1000); }
};

} // namespace

class DisplayManagerTest : public QObject
{
    Q_OBJECT

    FakeDisplayServices displays;
    FakeSystemWake wake;
    std::unique_ptr<FakeTaskExecutor> executor;
    std::shared_ptr<DisplayManager> manager;

    /// What the displays were shown since the last call, in order.
    std::vector<double> shown()
    {
        std::vector<double> temperatures;
        std::ranges::transform(displays.takeWrites(), std::back_inserter(temperatures), temperatureOf);
        return temperatures;
    }
    std::vector<double> shownIn(std::chrono::nanoseconds duration)
    {
        executor->advance(duration);
        return shown();
    }
    /// Whether this request begins with a step from `from`, and nothing else is shown any more.
    bool rampsFrom(double from, double to)
    {
        const auto before = executor->now();
        manager->setTemperature(to);
        const bool hasWaited = executor->now() == before + 50ms;
        executor->runReady();
        const auto first = shown();
        return hasWaited && first.size() == 1 && std::abs(first[0] - (from + (to - from) / 60)) < 0.2;
    }

private Q_SLOTS:
    void init()
    {
        executor = std::make_unique<FakeTaskExecutor>();
        displays.displays = {1, 2};
        manager = DisplayManager::create(displays, *executor, wake);
        QVERIFY(shownIn(5s).empty()); // neither creation nor idling at neutral touches a display
    }
    void cleanup()
    {
        executor.reset();
        manager.reset();
        displays.takeWrites();
    }

    void leavingNeutralRestoresThenHoldsTheEntryTemperatureThenRamps()
    {
        manager->setTemperature(3400);
        QCOMPARE(shownIn(499ms), (std::vector{restored}));
        QCOMPARE(displays.rampTargets.back()->blue, DisplayManager::createGammaTables(3400).blue);
        QCOMPARE(shownIn(1ms), (std::vector{5500.0}));
        QVERIFY(shownIn(199ms).empty());
        QCOMPARE(shownIn(1ms), (std::vector{5465.0}));
        QCOMPARE(manager->temperature(), 6500.0);
        const auto ramp = shownIn(1998ms);
        QCOMPARE(ramp.size(), std::size_t(59));
        QCOMPARE(ramp.back(), 3400.0);
        QVERIFY(std::ranges::is_sorted(ramp, std::greater()));
        QCOMPARE(shownIn(2ms), (std::vector{3400.0, 3400.0})); // the ramp's end, and once more when it is committed
        QCOMPARE(manager->temperature(), 3400.0);

        // Back to neutral it walks to the warm end and only then restores.
        executor->advance(1s); // between two periodic passes
        displays.takeWrites();
        manager->setTemperature(9000);
        auto back = shownIn(wholeRamp);
        std::erase(back, 3400.0); // periodic passes show the old temperature for a frame
        QCOMPARE(back.size(), std::size_t(61));
        QCOMPARE((std::vector{back[0], back[59], back[60]}), (std::vector{3451.7, 6500.0, restored}));
        QVERIFY(displays.rampTargets.size() == 2 && !displays.rampTargets.back());
        QCOMPARE(manager->temperature(), 6500.0);
        QVERIFY(shownIn(10s).empty());
    }

    void aRequestDuringARampIsHeldToTheRangeOrDropped()
    {
        for (const auto &[request, outcome] : {std::pair(4099.0, 2500.0), // near the old temperature
                                               {4100.0, 4100.0},
                                               {2550.0, 2550.0}, // near the running ramp's target
                                               {1500.0, 2000.0},
                                               {1e300, 6500.0},
                                               {std::nan(""), 2500.0}}) {
            manager->setTemperature(4000);
            executor->advance(wholeRamp);
            manager->setTemperature(2500);
            executor->advance(500ms);
            manager->setTemperature(request);
            executor->advance(wholeRamp);
            QCOMPARE(manager->temperature(), outcome);
        }
    }

    void aRampEndsInTimeThoughEverySleepIsLate()
    {
        manager->setTemperature(3400);
        shownIn(700ms);
        executor->lateness = 20ms;
        QCOMPARE(shownIn(2s + 21ms).size(), std::size_t(59 + 2));
        QCOMPARE(manager->temperature(), 3400.0);
    }

    void aRampStartsFromWhatWasShownLast()
    {
        manager->setTemperature(3400);
        shownIn(600ms);
        QVERIFY(rampsFrom(5500, 2000)); // while the entry temperature was held
        QVERIFY(manager->isShowing(2000) && !manager->isShowing(3400));
        const double last = shownIn(1s).back();
        QVERIFY(rampsFrom(last, 6000));
    }

    void theTintIsWrittenAgainEveryTwoSecondsAndAfterWake()
    {
        manager->setTemperature(3400);
        shownIn(wholeRamp);
        QCOMPARE(shownIn(20s), std::vector(10, 3400.0));
        wake.wakeUp();
        QCOMPARE(shown(), (std::vector{3400.0}));
        displays.displays = {2, 7, 9};
        manager->reapplyCurrentTemperature();
        QCOMPARE(displays.takeWrites().front().displays, displays.displays);
    }

    void resetEndsTheRampAndGivesTheDisplaysBack()
    {
        manager->setTemperature(3400);
        shownIn(wholeRamp);
        manager->reset();
        manager->setTemperature(3000);
        executor->runReady();
        QCOMPARE(manager->temperature(), 3400.0); // that reset came too late
        const double last = shownIn(1s).back();
        manager->reset();
        QVERIFY(manager->isShowing(6500));
        QCOMPARE(shownIn(10s), (std::vector{restored}));
        QCOMPARE(manager->temperature(), 6500.0);
        QVERIFY(executor->sleeperCount() == 1); // the periodic pass, once
        QVERIFY(rampsFrom(last, 6500));         // no ramp is running that would have it dropped
    }

    /// Requests, resets and wakes from several threads at once; the thread sanitizer watches, and the last word counts.
    void concurrentRequestsEndInTheLastOne()
    {
        {
            HastyExecutor hasty;
            manager = DisplayManager::create(displays, hasty, wake);
            std::vector<std::jthread> callers;
            for (int caller = 0; caller < 4; ++caller) {
                callers.emplace_back([this, caller] {
                    for (int i = 0; i < 200; ++i) {
                        manager->setTemperature(2000 + 260 * ((i * 7 + caller) % 18));
                        if (i % 5 == caller)
                            manager->reset();
                        manager->reapplyCurrentTemperature();
                    }
                });
            }
            callers.clear();
            manager->setTemperature(2130); // 100 K away from whatever was committed: never dropped
            QTRY_COMPARE(manager->temperature(), 2130.0);
            QVERIFY(hasty.threads.waitUntilIdle(10s));
        }
        const auto writes = displays.takeWrites();
        QCOMPARE(writes.back().tables.green, DisplayManager::createGammaTables(2130).green);
        wake.wakeUp(); // the executor is gone, the manager is not: still harmless
    }

    void theWhitePointFollowsTheTemperatureAlongStraightLines()
    {
        const std::map<double, std::array<double, 3>> whitePoints = {
            {6500, {1, 0.996510, 0.980556}}, // not the identity
            {3400, {1, 0.743727, 0.530086}}, {2000, {1, 0.536739, 0.054526}},
            {1900, {1, 0.516730, 0}},        {6600, {1, 1.002466, 1}}, // where the branches meet
            {7000, {0.735860, 1.086581, 1}},
        };
        for (const auto &[temperature, factors] : whitePoints) {
            const auto tables = DisplayManager::createGammaTables(temperature);
            const std::array channels = {&tables.red, &tables.green, &tables.blue};
            for (std::size_t i = 0; i < 3 * GammaTables::size; ++i) {
                const double level = std::min(double(i % 256) / 255 * factors[i / 256], 1.0);
                QVERIFY2(std::abs((*channels[i / 256])[i % 256] - level) < 1e-6,
                         qPrintable(QString::number(temperature)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(DisplayManagerTest)
#include "DisplayManager.moc"
