#include "update/UpdateFixture.h"

#include <QElapsedTimer>
#include <QFile>

using namespace ambertide;

Q_DECLARE_METATYPE(LoopbackServer::Answer)

namespace {

constexpr int megabyte = 1024 * 1024;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true; // the sanitizers' own memory would count
#else
constexpr bool isSanitized = false;
#endif

/// Most memory that this process has held so far, in bytes: the server's share counts too.
qint64 peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf("VmHWM:") + 6).trimmed().split(' ').value(0).toLongLong() * 1024;
}

} // namespace

/// A program of its own, so that nothing else counts in the memory.
class HostileFeeds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHostileFeedIsRefusedSoonAndInLittleMemory_data()
    {
        QTest::addColumn<LoopbackServer::Answer>("answer");
        using Answer = LoopbackServer::Answer;
        const QByteArray head = "HTTP/1.1 200 OK\r\n";
        const QByteArray chunked = head + "Transfer-Encoding: chunked\r\n";
        const QByteArray entities = "<!DOCTYPE rss [<!ENTITY a0 \"aaaaaaaaaa\">" +
                                    QByteArray("<!ENTITY b \"&a0;&a0;&a0;&a0;&a0;\">").repeated(20000);
        QTest::newRow("10 MB") << Answer{head, "<rss>" + QByteArray(10 * megabyte, ' ')};
        QTest::newRow("10 MB of entities") << Answer{head, entities.repeated(10)};
        QTest::newRow("entities below the cap") << Answer{head, entities + "]><rss>&b;</rss>"};
        QTest::newRow("endless") << Answer{head, QByteArray(65536, ' '), true};
        QTest::newRow("endless chunks") << Answer{chunked, "10000\r\n" + QByteArray(65536, ' ') + "\r\n", true};
        QTest::newRow("deep") << Answer{head, QByteArray("<rss>").repeated(200000)};
        QTest::newRow("deep item") << Answer{head, "<rss><channel><item>" + QByteArray("<title>").repeated(140000)};
        QTest::newRow("many attributes") << Answer{head, "<rss " + QByteArray("a='' ").repeated(200000) + "/>"};
        const QByteArray item = "<item><up:version>1</up:version><title>t</title></item>";
        QTest::newRow("many items") << Answer{
            head, "<rss xmlns:up='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>" +
                      item.repeated(megabyte / item.size() - 5)};
    }
    void aHostileFeedIsRefusedSoonAndInLittleMemory()
    {
        QFETCH(LoopbackServer::Answer, answer);
        UpdateFixture fixture;
        fixture.server.answer("/feed", answer);
        const auto service = fixture.service();
        QElapsedTimer watch;
        watch.start();
        service->check(UpdateSession::Origin::Manual);
        QTRY_VERIFY(fixture.session->state() == UpdateSession::State::Failed);
        const auto kind = fixture.session->failure().kind;
        QVERIFY(kind == UpdateFailure::Kind::TooLarge || kind == UpdateFailure::Kind::FeedUnreadable);
        QVERIFY2(watch.elapsed() < 2000, qPrintable(QString::number(watch.elapsed())));
        if (!isSanitized)
            QVERIFY2(peakMemory() < 64 * megabyte, qPrintable(QString::number(peakMemory())));
    }
};

QTEST_GUILESS_MAIN(HostileFeeds)
#include "HostileFeeds.moc"
