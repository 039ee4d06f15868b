#include "integration/SetColorTemperatureShortcut.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeUserDefaults.h"

#include <QTest>

#include <limits>

using namespace ambertide;
using enum ColorTemperature;

class ActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepFrom1000To6500IsAPreset()
    {
        std::int64_t kelvin = 1000;
        for (const auto preset : allColorTemperatures()) {
            QCOMPARE(rawValue(preset), kelvin);
            QVERIFY(colorTemperature(kelvin) == preset);
            QVERIFY(colorTemperature(identifier(preset)) == preset);
            kelvin += 100;
        }
        QCOMPARE(kelvin, 6600);
        QVERIFY(rawValue(k4200) == 4200 && rawValue(k6500) == 6500);
    }

    void nothingElseIsAPreset()
    {
        using Limits = std::numeric_limits<std::int64_t>;
        for (const std::int64_t kelvin :
             {2750L, 999L, 900L, 6600L, 0L, -1000L, 1000L + 25600L, Limits::min(), Limits::max()})
            QVERIFY(!colorTemperature(kelvin));
        for (const char *identifier :
             {"", "k", "3400", "k340", "k34000", "k3450", "K3400", "k+340", "k-100", "k 340", "k34x0"})
            QVERIFY2(!colorTemperature(std::string_view(identifier)), identifier);
    }

    void landmarksAreShownWithTheirNames_data()
    {
        QTest::addColumn<ColorTemperature>("preset");
        QTest::addColumn<std::string>("text");
        const auto row = [](ColorTemperature preset, const char *text) {
            QTest::newRow(text) << preset << std::string(text);
        };
        row(k1000, "1000K (Warmest)");
        row(k1100, "1100K");
        row(k1900, "1900K (Candle)");
        row(k2700, "2700K (Tungsten)");
        row(k3400, "3400K (Halogen)");
        row(k4200, "4200K (Flourescent)");
        row(k4300, "4300K");
        row(k5500, "5500K (Sunlight)");
        row(k6400, "6400K");
        row(k6500, "6500K (Daylight)");
    }
    void landmarksAreShownWithTheirNames()
    {
        QFETCH(ColorTemperature, preset);
        QFETCH(std::string, text);
        QCOMPARE(displayRepresentation(preset), text);
        const SetColorTemperatureShortcut shortcut{preset};
        QCOMPARE(shortcut.parameterSummary(), "Set display temperature to " + text);
        QCOMPARE(shortcut.phrases("Ambertide")[0], "Set display temperature to " + text + " in Ambertide");
        QCOMPARE(shortcut.phrases("Ambertide")[1], "Change Ambertide temperature to " + text);
    }

    void performingStoresAndPostsTheWholeNumber()
    {
        QVERIFY(SetColorTemperatureShortcut().temperature == k6500);
        for (const auto preset : {k1000, k3400, k6500}) {
            FakeUserDefaults userDefaults;
            FakeDistributedNotificationCenter center;
            SetColorTemperatureShortcut{preset}.perform(userDefaults, center);

            decltype(userDefaults.values) stored;
            stored["Ambertide.Temperature"] = static_cast<long long>(rawValue(preset));
            QVERIFY(userDefaults.values == stored);
            QCOMPARE(center.posts.size(), 1U);
            QCOMPARE(center.posts[0].first.name, std::string("Ambertide.UpdateTemperature"));
            QVERIFY((center.posts[0].first.userInfo == UserInfo{{"temperature", rawValue(preset)}}));
            QVERIFY(center.posts[0].second == Delivery::standard);
        }
    }
};

QTEST_GUILESS_MAIN(ActionsTest)
#include "Actions.moc"
