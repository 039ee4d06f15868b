#include "update/Appcast.h"
#include "update/ReleaseNotes.h"
#include "update/UpdateChoice.h"
#include "update/VersionComparator.h"

#include <QFile>
#include <QTest>

using namespace ambertide;

namespace {

QByteArray feedWith(const QByteArray &items)
{
    return "<?xml version='1.0'?><rss xmlns:up='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>" +
           items + "</channel></rss>";
}

/// A release for Linux with more in its enclosure or beside it.
QByteArray release(const QByteArray &version, const QByteArray &children = {})
{
    return "<item><up:version>" + version + "</up:version>" + children +
           "<enclosure url='https://example.org/a.deb' up:os='linux'/></item>";
}

} // namespace

class Feed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionsAreOrdered_data()
    {
        QTest::addColumn<QString>("older");
        QTest::addColumn<QString>("newer");
        QTest::addColumn<bool>("areEqual");
        const auto row = [](const char *older, const char *newer, bool areEqual) {
            QTest::addRow("%s %s", older, newer)
                << QString::fromLatin1(older) << QString::fromLatin1(newer) << areEqual;
        };
        row("1.9", "1.10", false);
        row("1.0b1", "1.0", false);
        row("1.0b1", "1.0b2", false);
        row("1.0b9", "1.0b10", false);
        row("1.0a2", "1.0b1", false);
        row("1.0rc1", "1.0.1", false);
        row("1.2", "1.2.0.1", false);
        row("2.0b1", "2.0.1b1", false);
        row("99999999999999999999", "100000000000000000000", false);
        row("", "1", false);
        row("garbage", "0", false);
        row("1.0", "1.0.0", true);
        row("1b1", "1.0b1", true);
        row("1.01", "1.1", true);
        row("1.0-beta", "1.0", true);
        row("1.0-2", "1.0-9", true);
        row("1..2", "1.2", true);
    }
    void versionsAreOrdered()
    {
        QFETCH(QString, older);
        QFETCH(QString, newer);
        QFETCH(bool, areEqual);
        const auto forwards = compareVersions(older.toStdString(), newer.toStdString());
        const auto backwards = compareVersions(newer.toStdString(), older.toStdString());
        QCOMPARE(forwards == 0, areEqual);
        QCOMPARE(forwards < 0, !areEqual);
        QCOMPARE(backwards > 0, !areEqual);
    }

    void everyFieldOfAnItemIsRead()
    {
        QFile feed(QFINDTESTDATA("../corpus/appcast/full.xml"));
        QVERIFY(feed.open(QIODevice::ReadOnly));
        QString problem;
        const auto appcast = Appcast::read(feed.readAll(), problem);
        QVERIFY2(appcast, qPrintable(problem));
        QCOMPARE(appcast->items.size(), std::size_t{2});
        const auto &item = appcast->items.front();
        const auto texts = QStringList() << item.title << item.link.toString() << item.version << item.channel
                                         << item.displayVersion << item.minimumSystemVersion << item.description
                                         << item.releaseNotesLink.toString() << item.criticalBelowVersion
                                         << item.signature << item.packageLink.toString() << item.operatingSystem
                                         << item.informationalBelowVersion;
        QCOMPARE(texts.join(u'|'),
                 QStringLiteral("Big|https://example.org/about|12|beta|1.2|6.1|Bold & <plain>|"
                                "https://example.org/notes|11|QUJD|https://example.org/a.deb|linux|7"));
        QVERIFY(item.isDescriptionPlainText && item.isCritical && item.packageLength == 77);
        QCOMPARE(item.informationalVersions, std::vector{QStringLiteral("9")});
        QCOMPARE(appcast->items.back().displayVersion, QStringLiteral("0.5"));
        QVERIFY(!appcast->items.back().packageLength);
    }

    void aFeedThatIsNoneIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("web page") << QByteArray("<html><body>Log in to this network</body></html>");
        QTest::newRow("no XML") << QByteArray("{\"version\": 2}");
        QTest::newRow("cut off") << feedWith(release("2")).chopped(9);
        QTest::newRow("document type") << QByteArray("<!DOCTYPE rss><rss/>");
        QTest::newRow("undeclared entity") << feedWith("<item>&nbsp;</item>");
        QTest::newRow("foreign entity") << QByteArray("<!DOCTYPE rss SYSTEM \"file:///etc/passwd\"><rss/>");
        QTest::newRow("long tag") << feedWith(release("2", "<b a='" + QByteArray(20000, '>') + "'/>"));
        QTest::newRow("other encoding") << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><rss>\xe4</rss>");
        QTest::newRow("over the cap") << feedWith(release("2") + QByteArray(1024 * 1024, ' '));
        QTest::newRow("zero bytes") << QByteArray(1000, '\0');
    }
    void aFeedThatIsNoneIsRefused()
    {
        QFETCH(QByteArray, bytes);
        QString problem;
        QVERIFY(!Appcast::read(bytes, problem));
        QVERIFY(!problem.isEmpty() && !problem.contains(u'\n'));
    }

    void theNewestReleaseForThisSystemIsChosen_data()
    {
        QTest::addColumn<QByteArray>("items");
        QTest::addColumn<QString>("chosen");
        QTest::newRow("none") << QByteArray() << QString();
        QTest::newRow("in any order") << release("9") + release("10") + release("9.5") << QStringLiteral("10");
        QTest::newRow("equal") << release("5.0") << QString();
        QTest::newRow("older") << release("4.9") << QString();
        QTest::newRow("other system") << release("10").replace("linux", "windows") << QString();
        QTest::newRow("no system") << release("10").replace("up:os='linux'", "") << QString();
        QTest::newRow("other channel") << release("6") + release("7", "<up:channel>beta</up:channel>")
                                       << QStringLiteral("6");
        QTest::newRow("system too old") << release("7", "<up:minimumSystemVersion>6.2</up:minimumSystemVersion>")
                                        << QString();
        QTest::newRow("system new enough")
            << release("7", "<up:minimumSystemVersion>6.1</up:minimumSystemVersion>") << QStringLiteral("7");
        QTest::newRow("nothing to download") << release("7").replace("url=", "href=") << QString();
        QTest::newRow("to be read about")
            << release("7", "<up:informationalUpdate/>").replace("url=", "href=") << QStringLiteral("7");
    }
    void theNewestReleaseForThisSystemIsChosen()
    {
        QFETCH(QByteArray, items);
        QString problem;
        const auto appcast = Appcast::read(feedWith(items), problem);
        QVERIFY2(appcast, qPrintable(problem));
        const auto item = chooseUpdate(*appcast, {QStringLiteral("5"), {}, QStringLiteral("6.1.0-13-amd64")});
        QTEST(item ? item->version : QString(), "chosen");
    }

    void aSkipSilencesUpToItsVersionUnlessCritical()
    {
        const RunningVersion running{QStringLiteral("5"), {}, {}};
        AppcastItem item;
        item.version = QStringLiteral("6.1");
        QVERIFY(!isSkipped(item, QString(), running));
        QVERIFY(!isSkipped(item, QStringLiteral("6.0"), running));
        QVERIFY(isSkipped(item, QStringLiteral("6.1.0"), running));
        item.isCritical = true;
        QVERIFY(!isSkipped(item, QStringLiteral("6.1"), running));
        item.criticalBelowVersion = QStringLiteral("5");
        QVERIFY(isSkipped(item, QStringLiteral("6.1"), running));
    }

    void releaseNotesBecomePlainText_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const char *html, const char *text) {
            QTest::newRow(name) << QString::fromUtf8(html) << QString::fromUtf8(text);
        };
        row("paragraphs", "<h1>New</h1>\n<p>One\n two</p><p>Three<br>four</p>", "New\n\nOne two\n\nThree\nfour");
        row("list", "<ul>\n <li>one</li>\n <li><b>two</b></li></ul>", "\u2022 one\n\u2022 two");
        row("entities", "a &amp;&lt;b&gt; &#8212;&#x41; &unknown; &#xD800; &", "a &<b> \u2014A &unknown; &#xD800; &");
        row("not run", "a<script>alert('<p>')</script>b<style>p{}</style><img src=x onerror=y>c", "abc");
        row("comment", "a<!-- <p> -->b", "ab");
        row("broken", "1 < 2 <p", "1 < 2");
        row("open script", "a<script>b", "a");
    }
    void releaseNotesBecomePlainText()
    {
        QFETCH(QString, html);
        QTEST(plainTextOfHtml(html), "text");
    }

    void textThatDeceivesIsTakenOut()
    {
        QCOMPARE(displayableText(QStringLiteral("a\u202eb\u0007\tc\nd")), QStringLiteral("ab\tc\nd"));
        QCOMPARE(displayableText(QString(longestReleaseNotes + 1, u'x')).size(), longestReleaseNotes);
    }
};

QTEST_GUILESS_MAIN(Feed)
#include "Feed.moc"
