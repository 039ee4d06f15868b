#include "display/DisplayManager.h"

#include <QTest>

#include <algorithm>
#include <cmath>

using namespace ambertide;

namespace {

bool isClose(double actual, double expected) { return std::abs(actual - expected) < 1e-6; }

} // namespace

class GammaTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whitePointFollowsTheTemperature_data()
    {
        QTest::addColumn<double>("temperature");
        QTest::addColumn<double>("red");
        QTest::addColumn<double>("green");
        QTest::addColumn<double>("blue");
        QTest::newRow("6500 K is not the identity") << 6500.0 << 1.0 << 0.996510 << 0.980556;
        QTest::newRow("6000 K") << 6000.0 << 1.0 << 0.965287 << 0.928783;
        QTest::newRow("5500 K") << 5500.0 << 1.0 << 0.931345 << 0.871551;
        QTest::newRow("4500 K") << 4500.0 << 1.0 << 0.853067 << 0.735035;
        QTest::newRow("3400 K") << 3400.0 << 1.0 << 0.743727 << 0.530086;
        QTest::newRow("2700 K") << 2700.0 << 1.0 << 0.653804 << 0.342767;
        QTest::newRow("2000 K") << 2000.0 << 1.0 << 0.536739 << 0.054526;
        QTest::newRow("1900 K has no blue left") << 1900.0 << 1.0 << 0.516730 << 0.0;
        QTest::newRow("6600 K, where the branches meet") << 6600.0 << 1.0 << 1.002466 << 1.0;
        QTest::newRow("7000 K, upper branch") << 7000.0 << 0.735860 << 1.086581 << 1.0;
        QTest::newRow("10000 K, upper branch") << 10000.0 << 0.611784 << 0.978583 << 1.0;
    }

    void whitePointFollowsTheTemperature()
    {
        QFETCH(double, temperature);
        const auto tables = DisplayManager::createGammaTables(temperature);
        const auto check = [](const GammaTables::Table &table, double factor) {
            return table[0] == 0.0F && isClose(table[128], 128.0 / 255.0 * factor) &&
                   isClose(table[255], std::min(factor, 1.0)) && std::ranges::is_sorted(table);
        };
        QFETCH(double, red);
        QFETCH(double, green);
        QFETCH(double, blue);
        QVERIFY(check(tables.red, red));
        QVERIFY(check(tables.green, green));
        QVERIFY(check(tables.blue, blue));
    }

    void aChannelAboveOneIsCutOff()
    {
        const auto green = DisplayManager::createGammaTables(7000).green;
        const auto firstFull = std::ranges::find(green, 1.0F) - green.begin();
        QCOMPARE(firstFull, 235);
    }
};

QTEST_GUILESS_MAIN(GammaTablesTest)
#include "GammaTables.moc"
