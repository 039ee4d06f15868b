#include "display/DisplayManager.h"

#include "support/FakeDisplayServices.h"
#include "support/FakeSystemWake.h"
#include "support/FakeTaskExecutor.h"

#include <QTest>

#include <algorithm>
#include <cmath>
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
    double low = 1900;
    double high = 6600;
    while (high - low > 0.001) {
        const double middle = (low + high) / 2;
        const auto tables = DisplayManager::createGammaTables(middle);
        (tables.green[255] + tables.blue[255] < write.tables.green[255] + write.tables.blue[255] ? low : high) = middle;
    }
    return std::round(low * 10) / 10;
}

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
        for (const auto &write : displays.takeWrites())
            temperatures.push_back(temperatureOf(write));
        return temperatures;
    }
    void settleAt(double temperature)
    {
        manager->setTemperature(temperature);
        executor->advance(wholeRamp);
        displays.takeWrites();
    }

private Q_SLOTS:
    void init()
    {
        executor = std::make_unique<FakeTaskExecutor>();
        displays.displays = {1, 2};
        manager = DisplayManager::create(displays, *executor, wake);
        executor->advance(5s);
        QVERIFY(displays.takeWrites().empty()); // neither creation nor idling at neutral touches a display
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
        executor->advance(499ms);
        QCOMPARE(shown(), (std::vector<double>{restored}));
        executor->advance(1ms);
        QCOMPARE(shown(), (std::vector<double>{5500}));
        executor->advance(199ms);
        QVERIFY(shown().empty());
        executor->advance(1ms);
        QCOMPARE(shown(), (std::vector<double>{5465}));
        QCOMPARE(manager->temperature(), 6500.0);
        executor->advance(1998ms);
        auto ramp = shown();
        QCOMPARE(ramp.size(), std::size_t(59));
        QCOMPARE(ramp.back(), 3400.0);
        QVERIFY(std::ranges::is_sorted(ramp, std::greater()));
        executor->advance(2ms);
        QCOMPARE(shown(), (std::vector<double>{3400, 3400})); // the ramp's end, and once more when it is committed
        QCOMPARE(manager->temperature(), 3400.0);
    }

    void goingNeutralWalksToTheWarmEndAndOnlyThenRestores()
    {
        settleAt(3400);
        executor->advance(1s); // stands between two periodic passes
        displays.takeWrites();
        manager->setTemperature(9000);
        executor->advance(wholeRamp);
        auto ramp = shown();
        std::erase(ramp, 3400.0); // periodic passes show the old temperature for a frame
        QCOMPARE(ramp.size(), std::size_t(61));
        QCOMPARE(ramp[0], 3451.7);
        QCOMPARE(ramp[59], 6500.0);
        QCOMPARE(ramp[60], restored);
        QCOMPARE(manager->temperature(), 6500.0);
        executor->advance(10s);
        QVERIFY(shown().empty());
    }

    void requestsAreHeldToTheShownRange_data()
    {
        QTest::addColumn<double>("requested");
        QTest::addColumn<double>("committed");
        QTest::newRow("too warm") << 1500.0 << 2000.0;
        QTest::newRow("too cold") << 1e300 << 6500.0;
        QTest::newRow("no number at all changes nothing") << std::nan("") << 6500.0;
    }
    void requestsAreHeldToTheShownRange()
    {
        QFETCH(double, requested);
        manager->setTemperature(requested);
        executor->advance(wholeRamp);
        QTEST(manager->temperature(), "committed");
    }

    void aRequestNearTheCommittedTemperatureIsDroppedWhileARampRuns_data()
    {
        QTest::addColumn<double>("request");
        QTest::addColumn<double>("outcome");
        QTest::newRow("near the old temperature") << 4099.0 << 2500.0;
        QTest::newRow("100 K away") << 4100.0 << 4100.0;
        QTest::newRow("near the running ramp's target") << 2550.0 << 2550.0;
    }
    void aRequestNearTheCommittedTemperatureIsDroppedWhileARampRuns()
    {
        settleAt(4000);
        manager->setTemperature(2500);
        executor->advance(500ms);
        QFETCH(double, request);
        manager->setTemperature(request);
        executor->advance(wholeRamp);
        QTEST(manager->temperature(), "outcome");
    }

    void aNewRequestStartsFromWhatTheRampHasShown()
    {
        settleAt(3000);
        manager->setTemperature(6000);
        executor->advance(1s);
        const double last = shown().back();
        QVERIFY(last > 4000 && last < 5000);
        manager->setTemperature(2000);
        executor->runReady();
        const auto first = shown();
        QCOMPARE(first.size(), std::size_t(1)); // the old ramp shows nothing more
        QVERIFY(std::abs(first[0] - (last + (2000 - last) / 60)) < 0.2);
    }

    void theTintIsWrittenAgainEveryTwoSecondsAndAfterWake()
    {
        settleAt(3400);
        executor->advance(20s);
        QCOMPARE(shown(), std::vector<double>(10, 3400.0));
        wake.wakeUp();
        QCOMPARE(shown(), (std::vector<double>{3400}));
        displays.displays = {2, 7, 9};
        manager->reapplyCurrentTemperature();
        QCOMPARE(displays.takeWrites().front().displays, displays.displays);
    }

    void resetCancelsTheRampAndGivesTheDisplaysBack()
    {
        settleAt(3400);
        manager->setTemperature(2500);
        executor->advance(1s);
        const double last = shown().back();
        manager->reset();
        executor->advance(10s);
        QCOMPARE(shown(), (std::vector<double>{restored}));
        QCOMPARE(manager->temperature(), 6500.0);
        QCOMPARE(executor->sleeperCount(), std::size_t(1)); // the periodic pass, once

        // the next ramp goes on from what was last shown
        manager->setTemperature(3400);
        executor->runReady();
        QVERIFY(std::abs(shown().front() - (last + (3400 - last) / 60)) < 0.2);
    }
};

QTEST_GUILESS_MAIN(DisplayManagerTest)
#include "DisplayManager.moc"
