#include "support/FakeTaskExecutor.h"
#include "update/AppcastUpdaterController.h"
#include "update/UpdateFixture.h"

using namespace ambertide;
using namespace std::chrono_literals;
using Kind = UpdateFailure::Kind;
using Origin = UpdateSession::Origin;
using State = UpdateSession::State;

class Sessions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPackageThatIsNotTheSignedOneIsRefused()
    {
        UpdateFixture fixture;
        const auto service = fixture.service();
        for (const auto &signature : {fixture.key.sign("packagf"), SigningKey().sign("package"), std::string()}) {
            fixture.announce("package", signature);
            service->check(Origin::Manual);
            QTRY_VERIFY(fixture.session->state() == State::Found);
            fixture.session->download();
            QTRY_VERIFY(fixture.session->state() == State::Failed);
            QVERIFY(fixture.session->failure().kind == Kind::BadSignature);
            fixture.session->install();
            QVERIFY(!fixture.installed);
            fixture.session->end();
        }
    }

    void anAutomaticCheckShowsOnlyAnUpdateThatIsNotSkipped()
    {
        UpdateFixture fixture;
        const auto service = fixture.service();
        const auto checkInSilence = [&] {
            service->check(Origin::Automatic);
            // Were that check still under way or shown, this one would join it and not ask the server again.
            const int before = fixture.server.requestCount("/feed");
            QTRY_VERIFY((service->check(Origin::Automatic), fixture.server.requestCount("/feed") > before + 1));
            QVERIFY(!fixture.session);
        };
        const auto endsAs = [&](Origin origin, State state) {
            service->check(origin); // a manual check joins the automatic one that is under way
            QTRY_VERIFY(fixture.session && fixture.session->state() == state);
        };
        const auto end = [&] {
            fixture.session->end();
            QTRY_VERIFY(!fixture.session);
        };
        checkInSilence();
        endsAs(Origin::Manual, State::Failed);
        end();
        fixture.serveFeed({});
        checkInSilence();
        endsAs(Origin::Manual, State::UpToDate);
        end();
        fixture.announce({}, {});
        endsAs(Origin::Automatic, State::Found);
        fixture.session->skip();
        QTRY_VERIFY(!fixture.session);
        checkInSilence();
        endsAs(Origin::Manual, State::Found); // which forgets the skip
        end();
        endsAs(Origin::Automatic, State::Found);
    }

    void aBuildWithoutAKeySaysSoWhenAsked()
    {
        for (const auto &[key, value] : {std::pair("SUPublicEDKey", "PUT KEY HERE"), {"SUFeedURL", ""}}) {
            UpdateFixture fixture;
            fixture.bundle.values[key] = value;
            const auto service = fixture.service();
            service->check(Origin::Automatic);
            QVERIFY(!fixture.session);
            service->check(Origin::Manual);
            QVERIFY(fixture.session->state() == State::Failed);
            QVERIFY(fixture.session->failure().kind == Kind::NotConfigured);
        }
    }

    void twoControllersShareOneSessionAndOneCheckADay()
    {
        UpdateFixture fixture;
        FakeTaskExecutor executor;
        const auto service = fixture.service();
        const auto pass = [&](std::chrono::seconds time) {
            fixture.calendar.current.secondsSinceReference += static_cast<double>(time.count());
            executor.advance(time);
            return fixture.defaults.doubleValue("SULastCheckTime");
        };
        {
            AppcastUpdaterController one(*service, executor);
            AppcastUpdaterController two(*service, executor);
            fixture.defaults.setDouble("SULastCheckTime", 1e9); // as when the clock was set back since
            QCOMPARE(pass(48h), 1e9);                           // off until switched on
            one.setAutomaticallyChecksForUpdates(true);
            two.setAutomaticallyChecksForUpdates(true);
            one.setUpdateCheckInterval(86400);
            const double firstCheck = pass(0s); // the server knows no feed, which counts as a check
            QTRY_COMPARE(fixture.server.requestCount("/feed"), 1);
            QCOMPARE(pass(23h), firstCheck);
            QCOMPARE(pass(1h), firstCheck + 86400);
            one.checkForUpdates();
            const int before = fixture.forwardCount;
            two.checkForUpdates();
            QCOMPARE(fixture.forwardCount, before + 1);
            one.setAutomaticallyChecksForUpdates(false);
            executor.runReady();
            QCOMPARE(executor.sleeperCount(), std::size_t{1});
        }
        executor.runReady();
        QCOMPARE(executor.sleeperCount(), std::size_t{0});
    }
};

QTEST_GUILESS_MAIN(Sessions)
#include "Sessions.moc"
