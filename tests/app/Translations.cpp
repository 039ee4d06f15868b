#include "app/Translations.h"

#include <QApplication>
#include <QDirIterator>
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
    void everyTextIsTranslatedWithItsPlaces()
    {
        QDirIterator files(QStringLiteral(AMBERTIDE_SOURCES "/translations"), {QStringLiteral("*.ts")});
        QVERIFY(files.hasNext());
        while (files.hasNext())
            check(files.next());
    }

private:
    static void check(const QString &path)
    {
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

private Q_SLOTS:
    void theFirstWantedLanguageThatThereIsServes()
    {
        for (const auto &[wanted, cancel] :
             {std::pair("de-AT", "Abbrechen"), {"tlh de en", "Abbrechen"}, {"en-GB de", "Cancel"}, {"", "Cancel"}}) {
            installTranslations(*qApp, QString::fromLatin1(wanted).split(u' ', Qt::SkipEmptyParts));
            QCOMPARE(QCoreApplication::translate("ambertide::UpdateWindow", "Cancel"), QLatin1String(cancel));
            qDeleteAll(qApp->findChildren<QTranslator *>());
        }
    }
};

QTEST_MAIN(Translations)
#include "Translations.moc"
