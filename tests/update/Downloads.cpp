#include "support/LoopbackServer.h"
#include "update/HttpsDownloader.h"

#include <QBuffer>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;
using Kind = UpdateFailure::Kind;
using Answer = LoopbackServer::Answer;

Q_DECLARE_METATYPE(LoopbackServer::Answer)
Q_DECLARE_METATYPE(DownloadLimits)

namespace {

constexpr qint64 megabyte = 1024 * 1024;
const QByteArray ok = "HTTP/1.1 200 OK\r\n";
const QByteArray moved = "HTTP/1.1 302 Found\r\nLocation: ";

/// Why it failed; nothing when the file has come.
std::optional<Kind> fetch(HttpsDownloader &downloader, const QUrl &location, QBuffer &sink,
                          const DownloadLimits &limits = {.mostBytes = 9})
{
    const QSignalSpy finished(&downloader, &HttpsDownloader::finished);
    const QSignalSpy failed(&downloader, &HttpsDownloader::failed);
    sink.open(QIODevice::WriteOnly);
    downloader.start(location, sink, limits);
    if (!QTest::qWaitFor([&] { return finished.count() + failed.count() > 0; }, 30000))
        qFatal("the download has no end");
    return failed.isEmpty() ? std::nullopt : std::optional(failed[0][0].value<UpdateFailure>().kind);
}

} // namespace

class Downloads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileThatHasMovedArrivesWhole()
    {
        LoopbackServer server;
        const QByteArray body(300000, 'b');
        server.serve("/file", body);
        server.answer("/moved", {moved + "/file\r\n", "look elsewhere"});
        HttpsDownloader downloader(TransportSecurity::HttpsOrLoopback);
        QBuffer sink;
        QVERIFY(!fetch(downloader, server.url("/moved"), sink, {.mostBytes = megabyte}));
        QCOMPARE(sink.data(), body);
    }

    void aBadAnswerFails_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<DownloadLimits>("limits");
        const auto row = [](const char *name, const Answer &answer, Kind kind,
                            const DownloadLimits &limits = {.mostBytes = 9}) {
            QTest::newRow(name) << answer << kind << limits;
        };
        row("endless error", {"HTTP/1.1 500 Oops\r\n", QByteArray(9999, 'e'), true}, Kind::ServerError);
        row("hangs up", {"", ""}, Kind::Unreachable);
        row("truncated", {ok + "Content-Length: 5\r\n", "1234"}, Kind::Unreachable);
        row("too large", {ok, QByteArray(10, 'x'), false, true}, Kind::TooLarge);
        row("in a circle", {moved + "/file\r\n"}, Kind::ServerError);
        row("to a file", {moved + "file:///etc/passwd\r\n"}, Kind::ServerError);
        row("silent", {"", "", false, true}, Kind::TimedOut, {.mostBytes = 9, .idle = 50ms});
        row("silent body", {ok, "begun", false, true}, Kind::TimedOut, {.mostBytes = 9, .idle = 50ms});
        row("drip", {ok, "d", true}, Kind::TimedOut, {.mostBytes = 1000 * megabyte, .total = 100ms});
    }
    void aBadAnswerFails()
    {
        QFETCH(Answer, answer);
        QFETCH(Kind, kind);
        QFETCH(DownloadLimits, limits);
        LoopbackServer server;
        server.answer("/file", answer);
        HttpsDownloader downloader(TransportSecurity::HttpsOrLoopback);
        QBuffer sink;
        QVERIFY(fetch(downloader, server.url("/file"), sink, limits) == kind);
        QVERIFY(sink.size() <= limits.mostBytes);
    }

    void onlyAServerWithATrustedCertificateIsAsked()
    {
        LoopbackServer plain;
        plain.serve("/", "file");
        QBuffer sink;
        HttpsDownloader downloader(TransportSecurity::HttpsOnly);
        QVERIFY(fetch(downloader, plain.url("/"), sink) == Kind::NotSecure);
        // Used by no other test: a certificate for 127.0.0.1, signed by itself, good until 2120.
        QFile file(QStringLiteral(AMBERTIDE_SOURCES "/tests/support/loopback.pem"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray identity = file.readAll();
        LoopbackServer server(identity);
        server.serve("/", "file");
        server.answer("/moved", {moved + plain.url("/").toEncoded() + "\r\n"});
        QVERIFY(fetch(downloader, server.url("/"), sink) == Kind::Unreachable);
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.setCaCertificates(QSslCertificate::fromData(identity));
        QSslConfiguration::setDefaultConfiguration(configuration);
        HttpsDownloader trusting(TransportSecurity::HttpsOnly);
        QVERIFY(!fetch(trusting, server.url("/"), sink));
        QVERIFY(fetch(trusting, server.url("/moved"), sink) == Kind::NotSecure);
        QCOMPARE(plain.requestCount("/"), 0);
    }
};

QTEST_GUILESS_MAIN(Downloads)
#include "Downloads.moc"
