#include "app/Translations.h"

#include <QApplication>
#include <QDir>
#include <QRegularExpression>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

#include <set>

using namespace ambertide;

class Translations : public QObject
{
    Q_OBJECT

private:
    /// The places for values in a text, such as %1, %L2 and %n.
    static std::set<QString> places(const QString &text)
    {
        static const QRegularExpression place(QStringLiteral("%L?(\\d{1,2}|n)"));
        std::set<QString> places;
        for (auto match = place.globalMatch(text); match.hasNext();)
            places.insert(match.next().captured());
        return places;
    }

private Q_SLOTS:
    void everyTextIsTranslatedWithItsPlaces_data()
    {
        QTest::addColumn<QString>("path");
        const QDir folder(QStringLiteral(AMBERTIDE_SOURCES "/translations"));
        const auto files = folder.entryList({QStringLiteral("*.ts")});
        QVERIFY(!files.isEmpty());
        for (const auto &file : files)
            QTest::addRow("%s", qUtf8Printable(file)) << folder.filePath(file);
    }
    void everyTextIsTranslatedWithItsPlaces()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QXmlStreamReader reader(&file);
        QString source;
        int count = 0;
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (reader.name() == QLatin1String("source"))
                source = reader.readElementText();
            if (reader.name() != QLatin1String("translation"))
                continue;
            const bool isFinished = !reader.attributes().hasAttribute(QStringLiteral("type"));
            const QString text = reader.readElementText(QXmlStreamReader::IncludeChildElements);
            QVERIFY2(isFinished && !text.trimmed().isEmpty(), qUtf8Printable(source));
            QVERIFY2(places(text) == places(source), qUtf8Printable(source));
            ++count;
        }
        QVERIFY2(!reader.hasError(), qUtf8Printable(reader.errorString()));
        QVERIFY(count > 0);
    }

    void theFirstWantedLanguageThatThereIsServes_data()
    {
        QTest::addColumn<QStringList>("wanted");
        QTest::addColumn<QString>("cancel");
        const auto english = QStringLiteral("Cancel");
        const auto german = QStringLiteral("Abbrechen");
        QTest::newRow("of a country") << QStringList{QStringLiteral("de-AT")} << german;
        QTest::newRow("second to one that there is none for")
            << QStringList{QStringLiteral("tlh"), QStringLiteral("de"), QStringLiteral("en")} << german;
        QTest::newRow("second to English") << QStringList{QStringLiteral("en-GB"), QStringLiteral("de")} << english;
        QTest::newRow("none") << QStringList{} << english;
    }
    void theFirstWantedLanguageThatThereIsServes()
    {
        QFETCH(QStringList, wanted);
        installTranslations(*qApp, wanted);
        QTEST(QCoreApplication::translate("ambertide::UpdateWindow", "Cancel"), "cancel");
    }
    void cleanup() { qDeleteAll(qApp->findChildren<QTranslator *>()); }
};

QTEST_MAIN(Translations)
#include "Translations.moc"
