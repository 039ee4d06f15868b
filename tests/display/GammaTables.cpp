#include "display/DisplayManager.h"

#include <QTest>

#include <algorithm>
#include <cmath>

using namespace ambertide;

class GammaTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theWhitePointFollowsTheTemperatureAlongStraightLines_data()
    {
        QTest::addColumn<double>("temperature");
        QTest::addColumn<QList<double>>("factors");
        QTest::newRow("6500 K is not the identity") << 6500.0 << QList{1.0, 0.996510, 0.980556};
        QTest::newRow("3400 K") << 3400.0 << QList{1.0, 0.743727, 0.530086};
        QTest::newRow("2000 K") << 2000.0 << QList{1.0, 0.536739, 0.054526};
        QTest::newRow("1900 K has no blue left") << 1900.0 << QList{1.0, 0.516730, 0.0};
        QTest::newRow("6600 K, where the branches meet") << 6600.0 << QList{1.0, 1.002466, 1.0};
        QTest::newRow("7000 K, upper branch") << 7000.0 << QList{0.735860, 1.086581, 1.0};
    }
    void theWhitePointFollowsTheTemperatureAlongStraightLines()
    {
        QFETCH(double, temperature);
        QFETCH(QList<double>, factors);
        const auto tables = DisplayManager::createGammaTables(temperature);
        for (const auto &[table, factor] : {std::pair(&tables.red, factors[0]), std::pair(&tables.green, factors[1]),
                                            std::pair(&tables.blue, factors[2])}) {
            for (std::size_t i = 0; i < GammaTables::size; ++i)
                QVERIFY(std::abs((*table)[i] - std::min(double(i) / 255 * factor, 1.0)) < 1e-6);
        }
    }
};

QTEST_GUILESS_MAIN(GammaTablesTest)
#include "GammaTables.moc"
