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
        static const QRegularExpression finished(
            QStringLiteral("<source>(.*?)</source>.*?<translation>\\s*(\\S.*?)</translation>"),
            QRegularExpression::DotMatchesEverythingOption);
        QDirIterator files(QStringLiteral(AMBERTIDE_SOURCES "/translations"), {QStringLiteral("*.ts")});
        QVERIFY(files.hasNext());
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const auto messages = QString::fromUtf8(file.readAll()).split(QStringLiteral("<message")).mid(1);
            QVERIFY(!messages.empty());
            for (const auto &message : messages) {
                const auto match = finished.match(message);
                QVERIFY2(match.hasMatch() && places(match.captured(2)) == places(match.captured(1)),
                         qUtf8Printable(message));
            }
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
