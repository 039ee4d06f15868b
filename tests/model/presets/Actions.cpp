#include "model/presets/SetColorTemperatureShortcut.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeUserDefaults.h"

#include <QTest>

#include <limits>

using namespace ambertide;

class ActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepFrom1000To6500IsAPresetAndNothingElse()
    {
        std::int64_t kelvin = 1000;
        for (const auto preset : allColorTemperatures()) {
            QCOMPARE(rawValue(preset), kelvin);
            QVERIFY(colorTemperature(kelvin) == preset && colorTemperature(identifier(preset)) == preset);
            kelvin += 100;
        }
        QCOMPARE(kelvin, 6600);
        using Limits = std::numeric_limits<std::int64_t>;
        for (const std::int64_t none :
             {2750L, 999L, 900L, 6600L, 0L, -1000L, 1000L + 25600L, Limits::min(), Limits::max()})
            QVERIFY(!colorTemperature(none));
        for (const char *none : {"", "k", "3400", "k340", "k34000", "k3450", "K3400", "k+340", "k-100", "k34x0"})
            QVERIFY2(!colorTemperature(std::string_view(none)), none);
    }

    void aShortcutSpeaksOfItsPresetStoresAndPostsIt_data()
    {
        QTest::addColumn<std::int64_t>("kelvin");
        for (const char *text : {"1000K (Warmest)", "1100K", "1900K (Candle)", "2700K (Tungsten)", "3400K (Halogen)",
                                 "4200K (Flourescent)", "4300K", "5500K (Sunlight)", "6400K", "6500K (Daylight)"})
            QTest::newRow(text) << std::int64_t{QByteArray(text).left(4).toInt()};
    }
    void aShortcutSpeaksOfItsPresetStoresAndPostsIt()
    {
        QFETCH(std::int64_t, kelvin);
        const std::string text = QTest::currentDataTag();
        const SetColorTemperatureShortcut shortcut{colorTemperature(kelvin).value()};
        QCOMPARE(displayRepresentation(shortcut.temperature), text);
        QCOMPARE(shortcut.parameterSummary(), "Set display temperature to " + text);
        QCOMPARE(shortcut.phrases("Ambertide")[0], "Set display temperature to " + text + " in Ambertide");
        QCOMPARE(shortcut.phrases("Ambertide")[1], "Change Ambertide temperature to " + text);

        FakeUserDefaults userDefaults;
        FakeDistributedNotificationCenter center;
        shortcut.perform(userDefaults, center);
        QVERIFY(userDefaults.values.size() == 1 &&
                userDefaults.values.at("Ambertide.Temperature") ==
                    decltype(userDefaults.values)::mapped_type(static_cast<long long>(kelvin)));
        QCOMPARE(center.posts.size(), 1U);
        QCOMPARE(center.posts[0].first.name, std::string("Ambertide.UpdateTemperature"));
        QVERIFY((center.posts[0].first.userInfo == UserInfo{{"temperature", kelvin}}));
    }
};

QTEST_GUILESS_MAIN(ActionsTest)
#include "Actions.moc"
