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
    void onlyACurrentFeedOfTheKeyIsRead()
    {
        UpdateFixture fixture;
        const auto service = fixture.service();
        const auto check = [&](Origin origin) -> std::optional<Kind> {
            service->check(origin);
            const bool ends =
                QTest::qWaitFor([&] { return fixture.session && fixture.session->state() > State::Checking; });
            const bool isRead = !ends || fixture.session->state() != State::Failed;
            const auto kind = isRead ? std::nullopt : std::optional(fixture.session->failure().kind);
            if (fixture.session)
                fixture.session->end();
            return kind;
        };
        fixture.calendar.current = {86400.0 * 31};
        fixture.serveFeed({}, "2001-01-02T00:00:00Z");
        QVERIFY(!check(Origin::Manual));
        fixture.serveFeed({}, "2001-01-01T23:59:59Z"); // of before
        QVERIFY(check(Origin::Manual) == Kind::FeedOutdated);
        fixture.serveFeed({}, "2001-01-03T00:00:00Z", "2001-01-31T23:59:59Z");
        QVERIFY(check(Origin::Manual) == Kind::FeedOutdated);
        fixture.serveFeed({}, "2001-01-03 00:00:00Z");
        QVERIFY(check(Origin::Manual) == Kind::FeedUnreadable);
        fixture.server.serve("/feed", "<rss/>");
        QVERIFY(check(Origin::Manual) == Kind::FeedUnreadable);
        fixture.key = SigningKey();
        fixture.serveFeed({}, "2001-01-04T00:00:00Z");
        QVERIFY(check(Origin::Manual) == Kind::FeedUnreadable);
    }

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
        const auto endsAs = [&](Origin origin, State state) {
            // A manual check joins the automatic one that is under way.
            service->check(Origin::Automatic);
            service->check(origin);
            QTRY_VERIFY(fixture.session && fixture.session->state() == state);
            state == State::Found ? fixture.session->skip() : fixture.session->end();
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
        endsAs(Origin::Manual, State::Found); // which forgets the skip
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
};

QTEST_GUILESS_MAIN(Sessions)
#include "Sessions.moc"
