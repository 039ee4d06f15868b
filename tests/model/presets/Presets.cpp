#include "model/presets/ActionSearch.h"
#include "model/presets/SetColorTemperatureShortcut.h"
#include "support/Fakes.h"

#include <QTest>

#include <limits>

using namespace ambertide;

class PresetsTest : public QObject
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
        for (const std::int64_t none : {2750L, 900L, 6600L, 0L, 26600L, std::numeric_limits<std::int64_t>::min()})
            QVERIFY(!colorTemperature(none));
        for (const char *none : {"", "k", "3400", "k34000", "k3450", "K3400", "k-100"})
            QVERIFY2(!colorTemperature(std::string_view(none)), none);
    }

    void aShortcutSpeaksOfItsPresetStoresAndPostsIt()
    {
        for (const std::string text :
             {"1000K (Warmest)", "1100K", "1900K (Candle)", "2700K (Tungsten)", "3400K (Halogen)",
              "4200K (Flourescent)", "5500K (Sunlight)", "6500K (Daylight)"}) {
            const std::int64_t kelvin = std::stoi(text);
            const SetColorTemperatureShortcut shortcut{colorTemperature(kelvin).value()};
            QCOMPARE(shortcut.parameterSummary(), "Set display temperature to " + text);
            QCOMPARE(shortcut.phrases("Ambertide")[0], "Set display temperature to " + text + " in Ambertide");
            QCOMPARE(shortcut.phrases("Ambertide")[1], "Change Ambertide temperature to " + text);

            FakeUserDefaults userDefaults;
            FakeDistributedNotificationCenter center;
            shortcut.perform(userDefaults, center);
            QCOMPARE(userDefaults.doubleValue("Ambertide.Temperature"), static_cast<double>(kelvin));
            QCOMPARE(center.posts.size(), 1U);
            QCOMPARE(center.posts[0].first.name, std::string("Ambertide.UpdateTemperature"));
            QVERIFY((center.posts[0].first.userInfo == UserInfo{{"temperature", kelvin}}));
        }
    }

    void queriesFindWhatAPersonMeans()
    {
        const std::pair<QByteArray, QByteArrayList> cases[] = {
            {"3400",
             {"3400", " 3400\tKELVIN ", "34", "halogen", "Halogen Lamp", "hal", "3400 (halogen)",
              "set display temperature to 3400K in Amb"}},
            {"1900", {"candle light", "warm candle", "change Ambertide temperature to candle"}},
            {"4200", {"fluorescent", "Flourescent", "florescent", "fluor"}},
            {"1000", {"10", "warmest"}},
            {"5500", {"SUN"}},
            {"6500", {"daylight", "neutral", "65"}},
            {"1000 1900 2700 3400", {"warm", "make my displays warm"}},
            {"",
             {"", "3", "3450", "6600", "34000", "34k", "99999999999999999999999999", "ha", "ambertide", "halogen 2700",
              "2700 3400", "daylight saving time", "\xe6\x9a\x96\xe8\x89\xb2 3400", "\xff\xfe\x80 halogen",
              QByteArray("3400 ").repeated(1'000'000), QByteArray(5'000'000, '\xff')}},
        };
        for (const auto &[kelvin, queries] : cases) {
            for (const auto &query : queries) {
                QByteArrayList found; // best first
                for (const auto &match : findColorTemperatures(query.toStdString()))
                    found.append(QByteArray::number(rawValue(match.temperature)));
                QVERIFY2(found.join(' ') == kelvin, query.left(80) + " finds " + found.join(' '));
            }
        }
    }
};

QTEST_GUILESS_MAIN(PresetsTest)
#include "Presets.moc"
