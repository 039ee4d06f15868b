#include "model/presets/ActionSearch.h"

#include <QTest>

using namespace ambertide;

class ActionSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void queriesFindWhatAPersonMeans_data()
    {
        QTest::addColumn<QByteArrayList>("queries");
        QTest::addColumn<QByteArray>("kelvin"); // of the matches, best first
        const auto row = [](const char *kelvin, QByteArrayList queries) {
            QTest::newRow(kelvin) << std::move(queries) << QByteArray(kelvin);
        };
        row("3400", {"3400", "3400k", "3400 K", " 3400\tKELVIN ", "34", "340", "halogen", "Halogen Lamp", "hal",
                     "set display temperature to 3400K in Ambertide", "set display temperature to 3400K in Amb",
                     "Set display temperature to 3400K (Halogen) in Ambertide", "3400 (halogen)"});
        row("1900", {"candle", "candle light", "warm candle", "change Ambertide temperature to candle"});
        row("4200", {"fluorescent", "Flourescent", "florescent", "fluor", "4200"});
        row("1000", {"1000", "10", "warmest"});
        row("2700", {"tungsten", "warm tungsten", "set the screens to 2700"});
        row("5500", {"sunlight", "sun light", "SUN"});
        row("6500", {"daylight", "neutral", "65"});
        row("1000 1900 2700 3400", {"warm", "warm light", "make my displays warm"});
        row("", {"",
                 "   ",
                 "3",
                 "3450",
                 "900",
                 "6600",
                 "34000",
                 "34k",
                 "99999999999999999999999999",
                 "ha",
                 "k",
                 "ambertide",
                 "set display temperature to",
                 "halogen 2700",
                 "2700 3400",
                 "daylight saving time",
                 "firefox",
                 "\xe6\x9a\x96\xe8\x89\xb2 3400",
                 "\xd9\xa3\xd9\xa4\xd9\xa0\xd9\xa0",
                 "\xff\xfe\x80 halogen",
                 QByteArray("3400 ").repeated(1'000'000),
                 QByteArray(5'000'000, ' '),
                 QByteArray(5'000'000, '\xff')});
    }
    void queriesFindWhatAPersonMeans()
    {
        QFETCH(QByteArrayList, queries);
        for (const auto &query : queries) {
            QByteArrayList found;
            double last = 1;
            for (const auto &match : findColorTemperatures(query.toStdString())) {
                found.append(QByteArray::number(rawValue(match.temperature)));
                QVERIFY(match.relevance > 0 && match.relevance <= last);
                last = match.relevance;
            }
            QFETCH(QByteArray, kelvin);
            QVERIFY2(found.join(' ') == kelvin, query.left(80) + " finds " + found.join(' '));
        }
    }
};

QTEST_GUILESS_MAIN(ActionSearchTest)
#include "ActionSearch.moc"
