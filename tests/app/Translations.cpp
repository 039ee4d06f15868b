#include "app/Translations.h"

#include <QApplication>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTest>
#include <QTranslator>

using namespace ambertide;

class Translations : public QObject
{
    Q_OBJECT

    /// The places for values in a text, such as %1, %L2 and %n.
    static QSet<QString> places(const QString &text)
    {
        static const QRegularExpression place(QStringLiteral("%L?(\\d{1,2}|n)"));
        QSet<QString> places;
        for (const auto &match : place.globalMatch(text))
            places += match.captured();
        return places;
    }

private Q_SLOTS:
    void everyTextIsTranslatedWithItsPlaces()
    {
        static const QRegularExpression message(
            QStringLiteral("<source>(.*?)</source>.*?<translation(.*?)>(.*?)</translation>"),
            QRegularExpression::DotMatchesEverythingOption);
        QDirIterator files(QStringLiteral(AMBERTIDE_SOURCES "/translations"), {QStringLiteral("*.ts")});
        QVERIFY(files.hasNext());
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const auto content = QString::fromUtf8(file.readAll());
            qsizetype count = 0;
            for (const auto &match : message.globalMatch(content)) {
                const auto source = match.captured(1);
                const auto text = match.captured(3);
                const bool isFinished = match.captured(2).isEmpty() && !text.trimmed().isEmpty();
                QVERIFY2(isFinished && places(text) == places(source), qUtf8Printable(source));
                ++count;
            }
            QVERIFY(count > 0 && count == content.count(QLatin1String("<message")));
        }
    }

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
