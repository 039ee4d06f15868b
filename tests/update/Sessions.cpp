#include "update/HttpsDownloader.h"
#include "update/UpdateFixture.h"

#include <QBuffer>
#include <QFile>
#include <QSignalSpy>

using namespace ambertide;
using namespace std::chrono_literals;
using Answer = LoopbackServer::Answer;
using Kind = UpdateFailure::Kind;
using Origin = UpdateSession::Origin;
using State = UpdateSession::State;

namespace {

const QByteArray ok = "HTTP/1.1 200 OK\r\n";
const QByteArray moved = "HTTP/1.1 302 Found\r\nLocation: ";

/// What came, and why it failed; nothing when the file has come whole.
std::pair<QByteArray, std::optional<Kind>> fetch(const QUrl &location, const DownloadLimits &limits,
                                                 TransportSecurity security = TransportSecurity::HttpsOrLoopback)
{
    HttpsDownloader downloader(security);
    const QSignalSpy finished(&downloader, &HttpsDownloader::finished);
    const QSignalSpy failed(&downloader, &HttpsDownloader::failed);
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    downloader.start(location, sink, limits);
    if (!QTest::qWaitFor([&] { return finished.count() + failed.count() > 0; }, 30000))
        qFatal("the download has no end");
    return {sink.data(), failed.isEmpty() ? std::nullopt : std::optional(failed[0][0].value<UpdateFailure>().kind)};
}

} // namespace

/// Checks for updates, and the downloads of which they consist.
class Sessions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileThatHasMovedArrivesWhole()
    {
        LoopbackServer server;
        LoopbackServer other;
        const QByteArray body(300000, 'b');
        other.serve("/file", body);
        server.answer("/moved", {moved + other.url("/file").toEncoded() + "\r\n", "look elsewhere"});
        const auto [file, failure] = fetch(server.url("/moved"), {.mostBytes = body.size()});
        QVERIFY(!failure && file == body);
    }

    void aBadAnswerFails()
    {
        const DownloadLimits small = {.mostBytes = 9};
        const DownloadLimits brief = {.mostBytes = 9, .idle = 50ms};
        for (const auto &[name, answer, kind, limits] :
             std::vector<std::tuple<const char *, Answer, Kind, DownloadLimits>>{
                 {"endless error", {"HTTP/1.1 500 Oops\r\n", QByteArray(9999, 'e'), true}, Kind::ServerError, small},
                 {"hangs up", {"", ""}, Kind::Unreachable, small},
                 {"truncated", {ok + "Content-Length: 5\r\n", "1234"}, Kind::Unreachable, small},
                 {"too large", {ok, QByteArray(10, 'x'), false, true}, Kind::TooLarge, small},
                 {"in a circle", {moved + "/file\r\n"}, Kind::ServerError, small},
                 {"to a file", {moved + "file:///etc/passwd\r\n"}, Kind::ServerError, small},
                 {"silent", {"", "", false, true}, Kind::TimedOut, brief},
                 {"silent body", {ok, "begun", false, true}, Kind::TimedOut, brief},
                 {"drip", {ok, "d", true}, Kind::TimedOut, {.mostBytes = 1'000'000'000, .total = 100ms}}}) {
            LoopbackServer server;
            server.answer("/file", answer);
            const auto [part, failure] = fetch(server.url("/file"), limits);
            QVERIFY2(failure == kind && part.size() <= limits.mostBytes, name);
        }
    }

    void onlyAServerWithATrustedCertificateIsAsked()
    {
        const auto problem = [](const QUrl &location) {
            return fetch(location, {.mostBytes = 9}, TransportSecurity::HttpsOnly).second;
        };
        LoopbackServer plain;
        plain.serve("/", "file");
        QVERIFY(problem(plain.url("/")) == Kind::NotSecure);
        // Used by no other test: a certificate for 127.0.0.1, signed by itself, good until 2120.
        QFile file(QStringLiteral(AMBERTIDE_SOURCES "/tests/support/loopback.pem"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray identity = file.readAll();
        LoopbackServer server(identity);
        server.serve("/", "file");
        server.answer("/moved", {moved + plain.url("/").toEncoded() + "\r\n"});
        QVERIFY(problem(server.url("/")) == Kind::Unreachable);
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.setCaCertificates(QSslCertificate::fromData(identity));
        QSslConfiguration::setDefaultConfiguration(configuration);
        QVERIFY(!problem(server.url("/")));
        QVERIFY(problem(server.url("/moved")) == Kind::NotSecure);
        QCOMPARE(plain.requestCount("/"), 0);
    }

    void onlyACurrentFeedOfTheKeyIsRead()
    {
        UpdateFixture fixture;
        const auto service = fixture.service();
        const auto problem = [&]() -> std::optional<Kind> {
            service->check(Origin::Manual);
            const bool isRead = QTest::qWaitFor([&] { return fixture.session->state() > State::Checking; }) &&
                                fixture.session->state() == State::UpToDate;
            const auto kind = fixture.session->failure().kind;
            fixture.session->end();
            return isRead ? std::nullopt : std::optional(kind);
        };
        fixture.calendar.current = {86400.0 * 31};
        fixture.serveFeed({}, "2001-01-02T00:00:00Z");
        QVERIFY(!problem());
        fixture.serveFeed({}, "2001-01-01T23:59:59Z"); // of before
        QVERIFY(problem() == Kind::FeedOutdated);
        fixture.serveFeed({}, "2001-01-03T00:00:00Z", "2001-01-31T23:59:59Z");
        QVERIFY(problem() == Kind::FeedOutdated);
        fixture.serveFeed({}, "2001-01-03 00:00:00Z");
        QVERIFY(problem() == Kind::FeedUnreadable);
        fixture.server.serve("/feed", "<rss/>");
        QVERIFY(problem() == Kind::FeedUnreadable);
        fixture.key = SigningKey();
        fixture.serveFeed({}, "2001-01-04T00:00:00Z");
        QVERIFY(problem() == Kind::FeedUnreadable);
    }

    void onlyAPackageThatIsTheSignedOneIsInstalled()
    {
        UpdateFixture fixture;
        auto service = fixture.service();
        const auto good = fixture.key.sign("package");
        for (const auto &signature : {fixture.key.sign("packagf"), SigningKey().sign("package"), std::string(), good}) {
            fixture.announce("package", signature);
            service->check(Origin::Manual);
            QTRY_VERIFY(fixture.session->state() == State::Found);
            fixture.session->download();
            QTRY_VERIFY(fixture.session->state() == (signature == good ? State::ReadyToInstall : State::Failed));
            QVERIFY(signature == good || fixture.session->failure().kind == Kind::BadSignature);
            fixture.session->install();
            QCOMPARE(fixture.installed != nullptr, signature == good);
            fixture.session->end();
        }
        service.reset();
        fixture.installed({UpdateInstaller::Outcome::Installed, {}}); // which nobody hears any more
    }

    void anAutomaticCheckShowsOnlyAnUpdateThatIsNotSkipped()
    {
        UpdateFixture fixture;
        const auto service = fixture.service();
        const auto endsAs = [&](Origin origin, State state) {
            // A manual check joins the automatic one that is under way.
            service->check(Origin::Automatic);
            service->check(origin);
            QTRY_VERIFY(fixture.session && fixture.session->state() == state);
            fixture.session->skip(); // of use to an update that was found
            fixture.session->end();
            QTRY_VERIFY(!fixture.session);
        };
        const auto endsInSilence = [&] {
            service->check(Origin::Automatic);
            // Were that check still under way or shown, this one would join it and not ask the server again.
            const int before = fixture.server.requestCount("/feed");
            QTRY_VERIFY((service->check(Origin::Automatic), fixture.server.requestCount("/feed") > before + 1));
            QVERIFY(!fixture.session);
        };
        endsInSilence();
        endsAs(Origin::Manual, State::Failed);
        fixture.serveFeed({});
        endsInSilence();
        endsAs(Origin::Manual, State::UpToDate);
        fixture.serveFeed({}, "2001-01-01T00:00:01Z", "2000-12-31T23:59:59Z");
        endsAs(Origin::Automatic, State::Failed); // that there is no valid feed any more, a person is told once
        endsInSilence();
        fixture.defaults.setDouble("Ambertide.NewestFeed", 0);
        fixture.announce({}, {});
        endsAs(Origin::Automatic, State::Found);
        endsInSilence();
        endsAs(Origin::Manual, State::Found);           // which forgets the skip
        fixture.bundle.values["CFBundleVersion"] = "6"; // while this one runs
        endsAs(Origin::Automatic, State::Installed);
    }

    void anAutomaticCheckComesOnceADay()
    {
        UpdateFixture fixture;
        const auto service = fixture.service();
        const auto pass = [&](std::chrono::seconds time) {
            fixture.calendar.current.secondsSinceReference += static_cast<double>(time.count());
            fixture.executor.advance(time);
            return fixture.defaults.doubleValue("SULastCheckTime");
        };
        const auto controller = service->createController();
        fixture.defaults.setDouble("SULastCheckTime", 1e9); // as when the clock was set back since
        QCOMPARE(pass(48h), 1e9);                           // off until switched on
        controller->setAutomaticallyChecksForUpdates(true);
        controller->setUpdateCheckInterval(86400);
        const double firstCheck = pass(0s);
        controller->checkForUpdates(); // joins that check, which must have ended before the next one can begin
        QTRY_VERIFY(fixture.session->state() == State::Failed);
        QCOMPARE(fixture.server.requestCount("/feed"), 1);
        fixture.session->end();
        QCOMPARE(pass(23h), firstCheck);
        QCOMPARE(pass(1h), firstCheck + 86400);
    }

    void aServerThatIsOutOfReachIsAskedAgainInAnHour()
    {
        UpdateFixture fixture;
        fixture.bundle.values["SUFeedURL"] = "http://127.0.0.1:1/";
        const auto service = fixture.service();
        const auto controller = service->createController();
        controller->setUpdateCheckInterval(86400);
        controller->setAutomaticallyChecksForUpdates(true);
        fixture.executor.advance(0s);
        const double hour = 3600;
        QTRY_COMPARE(fixture.defaults.doubleValue("SULastCheckTime"),
                     fixture.calendar.current.secondsSinceReference - 86400 + hour);
    }
};

QTEST_GUILESS_MAIN(Sessions)
#include "Sessions.moc"
