#include "model/presets/ActionSearch.h"

#include <QTest>
#include <QTranslator>

using namespace ambertide;

namespace {

struct German final : QTranslator
{
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return text[0] == 'h' ? QStringLiteral("halogenglühlampe") : text[0] == 'a' ? QStringLiteral("auf") : QString();
    }
};

} // namespace

class PresetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void queriesFindWhatAPersonMeans()
    {
        German german;
        QCoreApplication::installTranslator(&german);
        const std::pair<QByteArray, QByteArrayList> cases[] = {
            {"3400",
             {"3400", " 3400\tKELVIN ", "34", "halogen", "Halogen Lamp", "hal", "3400 (halogen)", "auf HALOGENGLÜH",
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
