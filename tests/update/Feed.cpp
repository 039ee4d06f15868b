#include "update/Appcast.h"
#include "update/ReleaseNotes.h"
#include "update/UpdateChoice.h"
#include "update/VersionComparator.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace ambertide;

namespace {

std::optional<Appcast> corpus(const char *name)
{
    QFile feed(QStringLiteral(AMBERTIDE_SOURCES "/tests/corpus/appcast/") + QLatin1String(name));
    if (!feed.open(QIODevice::ReadOnly))
        qFatal("the corpus lacks %s", name);
    QString problem;
    const auto appcast = Appcast::read(feed.readAll(), problem);
    return appcast || !problem.isEmpty() ? appcast : Appcast();
}

/// A release for Linux with more beside its enclosure.
QByteArray release(const QByteArray &version, const QByteArray &more = {})
{
    return "<item><up:version>" + version + "</up:version>" + more +
           "<enclosure url='https://example.org/a.deb' up:os='linux'/></item>";
}

} // namespace

class Feed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionsAreOrdered()
    {
        const auto ascending =
            QStringLiteral("garbage<=0<1.0a2<1b1=1.0b1<1.0b9<1.0b10<1.0rc1<1=1.0.0=1.0-beta=1.0-2<1.0.1b1<"
                           "1.0.1=1..0.01<1.9<1.10<99999999999999999999<100000000000000000000")
                .split(u'<');
        for (qsizetype i = 0; i < ascending.size() * ascending.size(); ++i) {
            const auto left = i / ascending.size();
            const auto right = i % ascending.size();
            for (const auto &one : ascending[left].split(u'=')) {
                for (const auto &other : ascending[right].split(u'='))
                    QVERIFY2(compareVersions(one.toStdString(), other.toStdString()) == (left <=> right),
                             qPrintable(one + u' ' + other));
            }
        }
    }

    void everyFieldOfAnItemIsRead()
    {
        const auto appcast = corpus("full.xml");
        QVERIFY(appcast && appcast->items.size() == 2);
        const auto &item = appcast->items.front();
        const auto texts = QStringList() << item.title << item.link.toString() << item.version << item.channel
                                         << item.displayVersion << item.minimumSystemVersion << item.description
                                         << item.releaseNotesLink.toString() << item.criticalBelowVersion
                                         << item.signature << item.packageLink.toString() << item.operatingSystem
                                         << item.informationalBelowVersion << item.informationalVersions.at(0);
        QCOMPARE(texts.join(u'|'),
                 QStringLiteral("Big|https://example.org/about|12|beta|1.2|6.1|Bold & <plain>|"
                                "https://example.org/notes|11|QUJD|https://example.org/a.deb|linux|7|9"));
        QVERIFY(item.isDescriptionPlainText && item.isCritical && item.packageLength == 77);
        QCOMPARE(appcast->items.back().displayVersion, QStringLiteral("0.5"));
        QVERIFY(!appcast->items.back().packageLength);
    }

    void aFeedThatIsNoneIsRefused()
    {
        for (const auto *name : {"cut.xml", "external.xml", "page.html", "utf16.xml", "zero"})
            QVERIFY2(!corpus(name), name);
    }

    void aHostileFeedIsRefusedSoon()
    {
        // Well-formed, each of them, so that no accident of the parser refuses it.
        const QByteArray start = "<rss xmlns:up='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>";
        const QByteArray end = "</channel></rss>";
        for (const auto &feed :
             {"<!DOCTYPE rss [" + QByteArray("<!ENTITY b 'aaaaaaaaaaaaaa'>").repeated(20000) + "]>" + start + end,
              start + QByteArray("<title>").repeated(60000) + QByteArray("</title>").repeated(60000) + end,
              start + "<b a='" + QByteArray(900000, '>') + "'/>" + end, start + release("1").repeated(9000) + end}) {
            QElapsedTimer watch;
            watch.start();
            QString problem;
            QVERIFY(!Appcast::read(feed, problem) && !problem.startsWith(QStringLiteral("it is larger")));
            QVERIFY2(watch.elapsed() < 2000, qPrintable(problem));
        }
    }

    void theNewestReleaseForThisSystemIsChosen()
    {
        const auto chosen = [](const QByteArray &items) {
            QString problem;
            const auto appcast =
                Appcast::read("<rss xmlns:up='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>" + items +
                                  "</channel></rss>",
                              problem);
            const auto item =
                chooseUpdate(appcast.value(), {QStringLiteral("5"), {}, QStringLiteral("6.1.0-13-amd64")});
            return item ? item->version.toStdString() : std::string();
        };
        QCOMPARE(chosen(release("9") + release("10") + release("9.5")), "10");
        QCOMPARE(chosen(release("5.0")), "");
        QCOMPARE(chosen(release("7").replace("up:os='linux'", "")), "");
        QCOMPARE(chosen(release("6") + release("7", "<up:channel>beta</up:channel>")), "6");
        QCOMPARE(chosen(release("7", "<up:minimumSystemVersion>6.2</up:minimumSystemVersion>")), "");
        QCOMPARE(chosen(release("7", "<up:minimumSystemVersion>6.1</up:minimumSystemVersion>")), "7");
        QCOMPARE(chosen(release("7").replace("url=", "href=")), ""); // nothing to download
        QCOMPARE(chosen(release("7", "<up:informationalUpdate/>").replace("url=", "href=")), "7");
    }

    void aSkipSilencesUpToItsVersionUnlessCritical()
    {
        const RunningVersion running{QStringLiteral("5"), {}, {}};
        AppcastItem item;
        item.version = QStringLiteral("6.1");
        QVERIFY(!isSkipped(item, QStringLiteral("6.0"), running));
        QVERIFY(isSkipped(item, QStringLiteral("6.1.0"), running));
        item.isCritical = true;
        QVERIFY(!isSkipped(item, QStringLiteral("6.1"), running));
        item.criticalBelowVersion = QStringLiteral("5");
        QVERIFY(isSkipped(item, QStringLiteral("6.1"), running));
    }

    void releaseNotesBecomePlainText()
    {
        const auto text = [](const char *html) { return plainTextOfHtml(QString::fromUtf8(html)).toStdString(); };
        QCOMPARE(text("<h1>New</h1>\n<p>One\n two</p><p>Three<br>four</p>"), "New\n\nOne two\n\nThree\nfour");
        QCOMPARE(text("<ul>\n <li>one</li>\n <li><b>two</b></li></ul>"), "• one\n• two");
        QCOMPARE(text("a &amp;&lt;b&gt; &#x41; &unknown; &#xD800; &"), "a &<b> A &unknown; &#xD800; &");
        QCOMPARE(text("a<script>alert('<p>')</script>b<!-- <p> --><img src=x onerror=y>c"), "abc");
        QCOMPARE(text("1 < 2 <script>b"), "1 < 2");
        QCOMPARE(displayableText(QStringLiteral("a\u202eb\u0007\tc\nd")), QStringLiteral("ab\tc\nd"));
    }
};

QTEST_GUILESS_MAIN(Feed)
#include "Feed.moc"
