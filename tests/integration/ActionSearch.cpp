#include "integration/ActionSearch.h"

#include <QByteArray>
#include <QTest>

using namespace ambertide;

class ActionSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aQueryFindsWhatAPersonMeans_data()
    {
        QTest::addColumn<QByteArray>("query");
        QTest::addColumn<QByteArray>("kelvin"); // of the matches, best first
        const auto row = [](const char *query, const char *kelvin) {
            QTest::newRow(query) << QByteArray(query) << QByteArray(kelvin);
        };
        row("3400", "3400");
        row("3400k", "3400");
        row("3400 K", "3400");
        row(" 3400\tKELVIN ", "3400");
        row("34", "3400");
        row("340", "3400");
        row("1000", "1000");
        row("10", "1000");
        row("halogen", "3400");
        row("Halogen Lamp", "3400");
        row("hal", "3400");
        row("candle", "1900");
        row("candle light", "1900");
        row("tungsten", "2700");
        row("fluorescent", "4200");
        row("Flourescent", "4200");
        row("florescent", "4200");
        row("fluor", "4200");
        row("sun light", "5500");
        row("DAYLIGHT", "6500");
        row("neutral", "6500");
        row("warmest", "1000");
        row("warm", "1000 1900 2700 3400");
        row("warm tungsten", "2700");
        row("set display temperature to 3400K in Ambertide", "3400");
        row("Set display temperature to 3400K (Halogen) in Ambertide", "3400");
        row("set display temperature to 3400K in Amb", "3400");
        row("change Ambertide temperature to candle", "1900");
        row("set the screens to 2700", "2700");

        row("", "");
        row("   ", "");
        row("3", "");
        row("3450", "");
        row("900", "");
        row("6600", "");
        row("34000", "");
        row("34k", "");
        row("-3400x", "");
        row("99999999999999999999999999", "");
        row("ha", "");
        row("k", "");
        row("ambertide", "");
        row("set display temperature to", "");
        row("halogen 2700", "");
        row("2700 3400", "");
        row("daylight saving time", "");
        row("firefox", "");
        row("\xe6\x9a\x96\xe8\x89\xb2 3400", "");
        row("\xd9\xa3\xd9\xa4\xd9\xa0\xd9\xa0", "");
        row("\xff\xfe\x80 halogen", "");
    }
    void aQueryFindsWhatAPersonMeans()
    {
        QFETCH(QByteArray, query);
        QByteArrayList found;
        double last = 1;
        for (const auto &match : findColorTemperatures(query.toStdString())) {
            found.append(QByteArray::number(rawValue(match.temperature)));
            QVERIFY(match.relevance > 0 && match.relevance <= last);
            last = match.relevance;
        }
        QTEST(found.join(' '), "kelvin");
    }

    void anExactQueryIsMoreRelevantThanAnUnfinishedOne()
    {
        const auto relevance = [](const char *query) { return findColorTemperatures(query).at(0).relevance; };
        QCOMPARE(relevance("change ambertide temperature to 3400k"), 1.0);
        QCOMPARE(relevance("halogen"), 1.0);
        QVERIFY(relevance("340") < 1.0 && relevance("34") < relevance("340"));
        QVERIFY(relevance("hal") < relevance("halog"));
    }

    void hugeQueriesFindNothing_data()
    {
        QTest::addColumn<QByteArray>("pattern");
        for (const char *pattern : {"3400 ", " ", "halogen ", "set ", "(", "4", "\xff"})
            QTest::newRow(pattern) << QByteArray(pattern);
    }
    void hugeQueriesFindNothing()
    {
        QFETCH(QByteArray, pattern);
        QVERIFY(findColorTemperatures(pattern.repeated(1'000'000).toStdString()).empty());
    }
};

QTEST_GUILESS_MAIN(ActionSearchTest)
#include "ActionSearch.moc"
