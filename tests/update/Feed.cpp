#include "update/Appcast.h"
#include "update/ReleaseNotes.h"
#include "update/UpdateChoice.h"
#include "update/VersionComparator.h"

#include <QTest>

#include <string>

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

QByteArray repeated(const QByteArray &text, int count) { return text.repeated(count); }

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
        QString problem;
        const auto appcast = Appcast::read(
            feedWith("<title>Of the feed</title><item><title>Big</title><link>https://example.org/about</link>"
                     "<up:version>12</up:version><up:shortVersionString>1.2</up:shortVersionString><up:channel>beta</"
                     "up:channel>"
                     "<up:minimumSystemVersion>6.1</up:minimumSystemVersion>"
                     "<up:releaseNotesLink>https://example.org/notes</up:releaseNotesLink>"
                     "<description up:format='plain-text'><b>Bold</b> &amp; plain</description>"
                     "<up:criticalUpdate up:version='11'/>"
                     "<up:informationalUpdate><up:version>9</up:version><up:belowVersion>7</up:belowVersion></"
                     "up:informationalUpdate>"
                     "<enclosure url='https://example.org/a.deb' length='77' up:version='99' up:edSignature='QUJD' "
                     "up:os='linux'/>"
                     "<version>of another namespace</version></item>"
                     "<item><enclosure up:version='5' up:shortVersionString='0.5' length='-4'/></item>"
                     "<item><title>without a version</title></item>"),
            problem);
        QVERIFY2(appcast, qPrintable(problem));
        QCOMPARE(appcast->items.size(), std::size_t{2});
        const auto &item = appcast->items.front();
        QCOMPARE(item.title, QStringLiteral("Big"));
        QCOMPARE(item.link, QUrl(QStringLiteral("https://example.org/about")));
        QCOMPARE(item.version, QStringLiteral("12"));
        QCOMPARE(item.displayVersion, QStringLiteral("1.2"));
        QCOMPARE(item.channel, QStringLiteral("beta"));
        QCOMPARE(item.minimumSystemVersion, QStringLiteral("6.1"));
        QCOMPARE(item.releaseNotesLink, QUrl(QStringLiteral("https://example.org/notes")));
        QCOMPARE(item.description, QStringLiteral("Bold & plain"));
        QVERIFY(item.isDescriptionPlainText);
        QVERIFY(item.isCritical);
        QCOMPARE(item.criticalBelowVersion, QStringLiteral("11"));
        QCOMPARE(item.informationalVersions, std::vector{QStringLiteral("9")});
        QCOMPARE(item.informationalBelowVersion, QStringLiteral("7"));
        QCOMPARE(item.packageLink, QUrl(QStringLiteral("https://example.org/a.deb")));
        QCOMPARE(item.packageLength, std::optional<qint64>(77));
        QCOMPARE(item.signature, QStringLiteral("QUJD"));
        QCOMPARE(item.operatingSystem, QStringLiteral("linux"));
        QCOMPARE(appcast->items.back().displayVersion, QStringLiteral("0.5"));
        QVERIFY(!appcast->items.back().packageLength);
    }

    void aFeedThatIsNoneIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray entities = "<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]>";
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("web page") << QByteArray("<html><body>Log in to this network</body></html>");
        QTest::newRow("no XML") << QByteArray("{\"version\": 2}");
        QTest::newRow("cut off") << feedWith(release("2")).chopped(9);
        QTest::newRow("document type") << QByteArray("<!DOCTYPE rss><rss/>");
        QTest::newRow("entities") << QByteArray(entities + "<rss><channel><item>&b;</item></channel></rss>");
        QTest::newRow("undeclared entity") << feedWith("<item>&nbsp;</item>");
        QTest::newRow("foreign entity") << QByteArray("<!DOCTYPE rss SYSTEM \"file:///etc/passwd\"><rss/>");
        QTest::newRow("deep") << repeated("<rss>", 200000);
        QTest::newRow("deep in an item") << feedWith("<item>" + repeated("<title>", 100000));
        QTest::newRow("long tag") << feedWith(release("2", "<b a='" + repeated(">", 20000) + "'/>"));
        QTest::newRow("other encoding") << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><rss>\xe4</rss>");
        QTest::newRow("over the cap") << feedWith(release("2") + repeated(" ", 1024 * 1024));
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
        const QByteArray newest = release("10");
        QTest::newRow("none") << QByteArray() << QString();
        QTest::newRow("in any order") << release("9") + newest + release("9.5") << QStringLiteral("10");
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
