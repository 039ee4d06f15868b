#include "platform/linux/randr/GammaRamp.h"

#include <QTest>

#include <array>
#include <cmath>
#include <limits>

using namespace ambertide;

class GammaRampTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tablesAreSpreadOverAnySize_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {2, 3, 255, 256, 257, 1000, 1024, 2048, 4096, 16384})
            QTest::addRow("%d entries", size) << size;
    }
    void tablesAreSpreadOverAnySize()
    {
        QFETCH(const int, size);
        // A straight line, a bent one and a falling one, so that a mix-up of channels or direction shows.
        const std::array<double (*)(double), 3> curves{[](double in) { return 0.5 * in; },
                                                       [](double in) { return in < 100 / 255.0 ? in : 100 / 255.0; },
                                                       [](double in) { return 1.0 - in; }};
        GammaTables tables{};
        for (std::size_t i = 0; i < GammaTables::size; ++i) {
            const double in = static_cast<double>(i) / 255.0;
            tables.red[i] = static_cast<float>(curves[0](in));
            tables.green[i] = static_cast<float>(curves[1](in));
            tables.blue[i] = static_cast<float>(curves[2](in));
        }

        const GammaRamp ramp(tables, static_cast<std::uint16_t>(size));
        const auto identity = GammaRamp::identity(static_cast<std::uint16_t>(size));

        for (int i = 0; i < size; ++i) {
            const double in = i / (size - 1.0);
            QVERIFY(std::abs(ramp.red()[i] - 65535.0 * curves[0](in)) <= 1.0);
            QVERIFY(std::abs(ramp.green()[i] - 65535.0 * curves[1](in)) <= 1.0);
            QVERIFY(std::abs(ramp.blue()[i] - 65535.0 * curves[2](in)) <= 1.0);
            const auto level = static_cast<int>(std::lround(65535.0 * in));
            QCOMPARE(identity.red()[i], level);
            QCOMPARE(identity.green()[i], level);
            QCOMPARE(identity.blue()[i], level);
        }
    }

    void whatIsNoLevelBecomesTheNearerEnd_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("level");
        QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN() << 0;
        QTest::newRow("below") << -0.25F << 0;
        QTest::newRow("above") << 1.5F << 65535;
        QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << 65535;
    }
    void whatIsNoLevelBecomesTheNearerEnd()
    {
        QFETCH(const float, value);
        QFETCH(const int, level);
        GammaTables tables;
        for (auto *table : {&tables.red, &tables.green, &tables.blue})
            table->fill(value);
        for (const std::uint16_t size : {std::uint16_t{256}, std::uint16_t{1024}}) {
            const GammaRamp ramp(tables, size);
            for (int i = 0; i < size; ++i)
                QCOMPARE(ramp.green()[i], level);
        }
    }
};

QTEST_APPLESS_MAIN(GammaRampTest)
#include "GammaRamp.moc"
