#include "update/SignedFeed.h"
#include "update/UpdateChoice.h"
#include "update/signature/SignatureVerifier.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <ctime>
#include <span>

using namespace ambertide;

namespace {

std::optional<Appcast> corpus(const char *name)
{
    QFile feed(QStringLiteral(AMBERTIDE_SOURCES "/tests/corpus/appcast/") + QLatin1String(name));
    if (!feed.open(QIODevice::ReadOnly))
        qFatal("the corpus lacks %s", name);
    QString problem;
    return Appcast::read(feed.readAll(), problem);
}

const QByteArray start = "<rss xmlns:up='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>";
const QByteArray end = "</channel></rss>";

QByteArray release(const QByteArray &version)
{
    return "<item><up:version>" + version +
           "</up:version><enclosure url='https://example.org/a.deb' up:os='linux'/></item>";
}

} // namespace

class Feed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionsAreOrdered()
    {
        const auto ascending = QStringLiteral("99999999999999999999<garbage<0=<0.9<1.0-beta<1.0b10<1b9=1.0.0b9<1rc1<"
                                              "1=1.0.0<1.0.1b1<1.0.1=1.00.01<1.9<1.10<2147483647")
                                   .split(u'<');
        for (qsizetype i = 0; i < ascending.size() * ascending.size(); ++i) {
            const auto left = i / ascending.size();
            const auto right = i % ascending.size();
            for (const auto &one : ascending[left].split(u'=')) {
                for (const auto &other : ascending[right].split(u'='))
                    QVERIFY2(compareVersions(one, other) == (left <=> right), qPrintable(one + u' ' + other));
            }
        }
    }

    void everyFieldOfAnItemIsRead()
    {
        const auto appcast = corpus("full.xml");
        QVERIFY(appcast && appcast->items.size() == 2);
        const auto &item = appcast->items.front();
        const auto texts = QStringList() << item.version << item.displayVersion << item.releaseNotes.text
                                         << item.releaseNotesLink.toString() << item.criticalBelowVersion
                                         << item.signature << item.packageLink.toString() << item.operatingSystem;
        QCOMPARE(texts.join(u'|'),
                 QStringLiteral("12|1.2|Bold & <plain>|https://example.org/notes|11|QUJD|https://example.org/a.deb|"
                                "linux"));
        QVERIFY(item.releaseNotes.isPlainText && item.isCritical);
        QVERIFY(appcast->items.back().displayVersion == QStringLiteral("0.5"));
    }

    void aHostileFeedIsRefusedSoon()
    {
        for (const auto *name : {"cut.xml", "external.xml", "page.html", "utf16.xml", "zero"})
            QVERIFY2(!corpus(name), name);
        QByteArray attributes;
        for (int i = 0; i < 60000; ++i)
            attributes += " a" + QByteArray::number(i) + "='>'";
        // Well-formed, each of them, so that no accident of the parser refuses it.
        for (const auto &feed : {"<!DOCTYPE rss [<!ENTITY % a '" + QByteArray("<!ENTITY b \"\">").repeated(20000) +
                                     "'>" + QByteArray("%a;").repeated(20000) + "]>" + start + end,
                                 start + QByteArray("<a>").repeated(60000) + QByteArray("</a>").repeated(60000) + end,
                                 start + "<b" + attributes + "/>" + end, start + release("1").repeated(9000) + end,
                                 start + QByteArray(Appcast::mostBytes, ' ') + end}) {
            const auto before = std::clock(); // of the processor: other processes may be busy
            QString problem;
            QVERIFY(!Appcast::read(feed, problem));
            QVERIFY2(!problem.isEmpty() && std::clock() - before < 2 * CLOCKS_PER_SEC, qPrintable(problem));
        }
        QString problem;
        QVERIFY(Appcast::read(start + QByteArray("<a>").repeated(9000) + QByteArray("</a>").repeated(9000) + end,
                              problem)); // deep, yet within the bounds
    }

    void whatTheScriptSignsIsAccepted()
    {
        const QTemporaryDir folder;
        const auto sign = [&folder](const char *arguments) {
            QProcess script;
            script.setWorkingDirectory(folder.path());
            script.start(QStringLiteral(AMBERTIDE_SOURCES "/scripts/sign"), QString::fromLatin1(arguments).split(u' '));
            return script.waitForFinished() && script.exitCode() == 0 ? script.readAll().trimmed().toStdString()
                                                                      : "failed";
        };
        const auto read = [&folder] {
            QFile file(folder.filePath(QStringLiteral("feed")));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        const auto keys = sign("new-key old") + ' ' + sign("new-key key");
        const auto verifier = SignatureVerifier::withPublicKeys(keys).value();
        QVERIFY(!SignatureVerifier::withPublicKeys(keys + ' ' + keys));
        QFile::copy(QStringLiteral(AMBERTIDE_SOURCES "/tests/corpus/appcast/full.xml"),
                    folder.filePath(QStringLiteral("feed")));
        for (const auto &[command, days] : {std::pair("feed old feed", 90), std::pair("feed key feed 7", 7)}) {
            const auto package = read();
            const auto *bytes = reinterpret_cast<const unsigned char *>(package.data());
            const std::span content(bytes, static_cast<std::size_t>(package.size()));
            QVERIFY(verifier.accepts(content, sign("package key feed")));
            QCOMPARE(sign(command), "");
            const auto feed = SignedFeed::read(read(), verifier);
            QVERIFY(feed &&
                    feed->validUntil.secondsSinceReference - feed->signedAt.secondsSinceReference == 86400 * days);
            QVERIFY(!SignedFeed::read(read().replace("Big", "Bug"), verifier));
            QString problem;
            QVERIFY(Appcast::read(read(), problem) && read().count("<!-- feed") == 1);
        }
        QCOMPARE(sign("feed missing feed"), "failed");
        QVERIFY(SignedFeed::read(read(), verifier));
    }

    void theNewestReleaseForThisSystemIsChosen()
    {
        const RunningVersion running{QStringLiteral("5"), {}};
        const auto chosen = [&](const QByteArray &items) {
            QString problem;
            const auto item = chooseUpdate(Appcast::read(start + items + end, problem).value(), running);
            return item ? item->version.toStdString() : std::string();
        };
        QCOMPARE(chosen(release("9") + release("10") + release("10b1")), "10");
        QCOMPARE(chosen(release("5.0") + release("5-beta")), "");
        QCOMPARE(chosen(release("7").replace("up:os='linux'", "")), "");
        QCOMPARE(chosen(release("7").replace("url=", "href=")), ""); // nothing to download

        AppcastItem item;
        item.version = QStringLiteral("6.1");
        QVERIFY(!isSkipped(item, QStringLiteral("6.0"), running));
        QVERIFY(isSkipped(item, QStringLiteral("6.1.0"), running));
        item.isCritical = true;
        QVERIFY(!isSkipped(item, QStringLiteral("6.1"), running));
        item.criticalBelowVersion = QStringLiteral("5");
        QVERIFY(isSkipped(item, QStringLiteral("6.1"), running));
    }
};

QTEST_GUILESS_MAIN(Feed)
#include "Feed.moc"
