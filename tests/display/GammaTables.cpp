#include "display/DisplayManager.h"

#include <QTest>

using namespace ambertide;

class GammaTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

QTEST_GUILESS_MAIN(GammaTablesTest)
#include "GammaTables.moc"
