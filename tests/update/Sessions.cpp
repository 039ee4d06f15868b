#include "support/FakeTaskExecutor.h"
#include "update/AppcastUpdaterController.h"
#include "update/UpdateFixture.h"

#include <QFile>

using namespace ambertide;
using namespace std::chrono_literals;
using Kind = UpdateFailure::Kind;
using Origin = UpdateSession::Origin;
using State = UpdateSession::State;
using Outcome = UpdateInstaller::Outcome;

namespace {

QString shown(const UpdateFixture &fixture)
{
    return fixture.session != nullptr ? fixture.session->item().version : QString();
}

} // namespace

class Sessions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUpdateIsFoundVerifiedAndInstalled()
    {
        UpdateFixture fixture;
        fixture.server.serve("/notes", "<p>Better</p><script>worse</script>");
        fixture.announce("6", QByteArray(200000, 'p'),
                         "<up:shortVersionString>0.6\u202e</up:shortVersionString><up:releaseNotesLink>" +
                             fixture.server.url("/notes").toEncoded() + "</up:releaseNotesLink>");
        const auto service = fixture.service();
        service->check(Origin::Manual);
        QVERIFY(fixture.session && fixture.session->state() == State::Checking);
        QTRY_VERIFY(fixture.session->state() == State::Found);
        QCOMPARE(fixture.session->item().displayVersion, QStringLiteral("0.6"));
        QTRY_COMPARE(fixture.session->releaseNotes(), QStringLiteral("Better"));
        fixture.session->install(); // too early
        fixture.session->download();
        QTRY_VERIFY(fixture.session->state() == State::ReadyToInstall);
        QCOMPARE(fixture.session->receivedBytes(), 200000);

        fixture.session->install();
        QFile package(fixture.installer.request->package);
        QVERIFY(package.open(QIODevice::ReadOnly));
        QCOMPARE(package.readAll(), QByteArray(200000, 'p'));
        QCOMPARE(fixture.installer.request->signature, fixture.key.sign(std::string(200000, 'p')));
        fixture.session->end(); // not now
        fixture.installer.request->done({Outcome::Dismissed, {}});
        QVERIFY(fixture.session->state() == State::ReadyToInstall);
        fixture.session->install();
        fixture.installer.request->done({Outcome::Installed, {}});
        QVERIFY(fixture.session->state() == State::Installed);
        fixture.session->end();
        QTRY_VERIFY(fixture.session == nullptr);
        QVERIFY(!package.exists());
    }

    void aPackageThatIsNotTheSignedOneIsRefused_data()
    {
        QTest::addColumn<QByteArray>("served");
        QTest::addColumn<std::optional<std::string>>("signature");
        QTest::addColumn<Kind>("kind");
        const auto row = [](const char *name, const QByteArray &served, const std::optional<std::string> &signature,
                            Kind kind) { QTest::newRow(name) << served << signature << kind; };
        row("flipped bit", "packagf", std::nullopt, Kind::BadSignature);
        row("other key", "package", SigningKey().sign(std::string("package")), Kind::BadSignature);
        row("no signature", "package", "", Kind::BadSignature);
        row("longer", "package+", std::nullopt, Kind::WrongLength);
        row("shorter", "packag", std::nullopt, Kind::WrongLength);
        row("nothing", "", std::nullopt, Kind::WrongLength);
    }
    void aPackageThatIsNotTheSignedOneIsRefused()
    {
        QFETCH(QByteArray, served);
        QFETCH(std::optional<std::string>, signature);
        QFETCH(Kind, kind);
        UpdateFixture fixture;
        fixture.claimedSignature = signature;
        fixture.announce("6");
        fixture.server.serve("/package", served);
        const auto service = fixture.service();
        service->check(Origin::Manual);
        QTRY_VERIFY(fixture.session->state() == State::Found);
        fixture.session->download();
        QTRY_VERIFY(fixture.session->state() == State::Failed);
        QVERIFY(fixture.session->failure().kind == kind);
    }

    void aCheckWithoutAResultShowsOnlyWhenAskedFor_data()
    {
        QTest::addColumn<QByteArray>("feed");
        QTest::addColumn<State>("state");
        QTest::newRow("no items") << QByteArray("<rss/>") << State::UpToDate;
        QTest::newRow("no feed") << QByteArray("welcome") << State::Failed;
    }
    void aCheckWithoutAResultShowsOnlyWhenAskedFor()
    {
        QFETCH(QByteArray, feed);
        QFETCH(State, state);
        UpdateFixture fixture;
        fixture.server.serve("/feed", feed);
        const auto service = fixture.service();
        service->check(Origin::Manual);
        QTRY_VERIFY(fixture.session->state() == state);
        fixture.session->end();
        QTRY_VERIFY(fixture.session == nullptr);
        service->check(Origin::Automatic);
        QTRY_COMPARE(fixture.server.requestCount("/feed"), 2);
        // Were the automatic check still shown or under way, this one would join it and not ask the server again.
        QTRY_VERIFY((service->check(Origin::Automatic), fixture.server.requestCount("/feed") == 3));
        QVERIFY(fixture.session == nullptr);
    }

    void aBuildWithoutAKeySaysSoWhenAsked()
    {
        for (const auto &[key, value] :
             {std::pair("SUPublicEDKey", ""), {"SUPublicEDKey", "PUT KEY HERE"}, {"SUFeedURL", ""}}) {
            UpdateFixture fixture;
            fixture.bundle.values[key] = value;
            const auto service = fixture.service();
            QVERIFY(!service->canCheck());
            service->check(Origin::Automatic);
            QVERIFY(fixture.session == nullptr);
            service->check(Origin::Manual);
            QVERIFY(fixture.session->state() == State::Failed);
            QVERIFY(fixture.session->failure().kind == Kind::NotConfigured);
        }
    }

    void aSkipSilencesAutomaticChecksUntilAManualOne()
    {
        UpdateFixture fixture;
        fixture.announce("6");
        const auto service = fixture.service();
        service->check(Origin::Automatic);
        QTRY_COMPARE(shown(fixture), QStringLiteral("6"));
        fixture.session->skip();
        QTRY_VERIFY(fixture.session == nullptr);
        service->check(Origin::Automatic);
        QTRY_VERIFY((service->check(Origin::Automatic), fixture.server.requestCount("/feed") == 3));
        QVERIFY(fixture.session == nullptr);
        service->check(Origin::Manual); // joins the automatic one that is under way
        QTRY_COMPARE(shown(fixture), QStringLiteral("6"));
        fixture.session->end();
        QTRY_VERIFY(fixture.session == nullptr);
        service->check(Origin::Automatic);
        QTRY_COMPARE(shown(fixture), QStringLiteral("6"));
    }

    void twoControllersShareOneSessionAndOneCheckADay()
    {
        UpdateFixture fixture;
        FakeTaskExecutor executor;
        const auto service = fixture.service();
        AppcastUpdaterController one(*service, executor);
        const auto requests = [&] { return fixture.server.requestCount("/feed"); };
        const auto pass = [&](std::chrono::seconds time) {
            fixture.calendar.current.secondsSinceReference += static_cast<double>(time.count());
            executor.advance(time);
        };
        {
            AppcastUpdaterController two(*service, executor);
            pass(48h);
            QVERIFY(!fixture.defaults.hasObject("SULastCheckTime")); // off until switched on
            one.setAutomaticallyChecksForUpdates(true);
            two.setAutomaticallyChecksForUpdates(true);
            one.setUpdateCheckInterval(86400);
            pass(0s); // overdue: at once; the server knows no feed, which counts as a check
            QTRY_COMPARE(requests(), 1);
            for (int hour = 0; hour < 23; ++hour)
                pass(1h);
            const double firstCheck = fixture.defaults.doubleValue("SULastCheckTime");
            pass(1h);
            QCOMPARE(fixture.defaults.doubleValue("SULastCheckTime"), firstCheck + 86400);
            QTRY_COMPARE(requests(), 2);
        }
        executor.runReady();
        QCOMPARE(executor.sleeperCount(), std::size_t{1});
        one.setAutomaticallyChecksForUpdates(false);
        executor.runReady();
        QCOMPARE(executor.sleeperCount(), std::size_t{0});
        one.checkForUpdates();
        one.checkForUpdates();
        QCOMPARE(fixture.forwardCount, 1);
    }

    void theNextCheckIsReckonedFromTheLast_data()
    {
        QTest::addColumn<double>("last");
        QTest::addColumn<double>("interval");
        QTest::addColumn<double>("wait");
        QTest::newRow("fresh") << 1000.0 << 86400.0 << 86400.0;
        QTest::newRow("half") << 1000.0 - 43200 << 86400.0 << 43200.0;
        QTest::newRow("overdue") << -99999.0 << 86400.0 << 0.0;
        QTest::newRow("future") << 1001.0 << 86400.0 << 0.0;
        QTest::newRow("not a number") << qQNaN() << 86400.0 << 0.0;
        QTest::newRow("too often") << 1000.0 << 1.0 << 3600.0;
        QTest::newRow("never asked for") << 1000.0 << qQNaN() << 3600.0;
    }
    void theNextCheckIsReckonedFromTheLast()
    {
        QFETCH(double, last);
        QFETCH(double, interval);
        FakeUserDefaults defaults;
        UpdateRecord record(defaults);
        QCOMPARE(record.secondsUntilCheck({1000}, interval), 0.0);
        record.setLastCheck({last});
        QTEST(record.secondsUntilCheck({1000}, interval), "wait");
    }

    void theServiceMayGoAtAnyTime()
    {
        UpdateFixture fixture;
        fixture.announce("6");
        auto service = fixture.service();
        service->check(Origin::Manual);
        QTRY_VERIFY(fixture.session->state() == State::Found);
        fixture.session->download();
        QTRY_VERIFY(fixture.session->state() == State::ReadyToInstall);
        fixture.session->install();
        service.reset();
        fixture.installer.request->done({Outcome::Installed, {}});
    }
};

QTEST_GUILESS_MAIN(Sessions)
#include "Sessions.moc"
