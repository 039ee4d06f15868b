#include "platform/linux/DBusNotificationCenter.h"
#include "support/CapturedConsole.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/PrivateBus.h"

#include <QTest>

#include <malloc.h>

#include <memory>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// A centre on a private bus.
struct BusTransport
{
    PrivateBus bus;
    DBusSession session{SdBusKind::session, 10ms};
    DBusNotificationCenter center{session};
};

struct Recorder
{
    std::vector<Notification> received;
    Observation observation;

    Recorder(DistributedNotificationCenter &center, const char *name)
        : observation(center.observe(name, Delivery::immediate, [this](const auto &post) { received.push_back(post); }))
    {
    }
};

Notification named(const char *name) { return {name, std::nullopt}; }

} // namespace

class DistributedNotificationCentersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void postsReachTheObserversOfTheirName_data()
    {
        QTest::addColumn<bool>("isFake");
        QTest::newRow("fake") << true;
        QTest::newRow("D-Bus") << false;
    }
    void postsReachTheObserversOfTheirName()
    {
        QFETCH(bool, isFake);
        BusTransport transport;
        FakeDistributedNotificationCenter fake;
        DistributedNotificationCenter &center = isFake ? fake : static_cast<decltype(center)>(transport.center);
        Recorder first(center, "Name");
        Recorder leaving(center, "Name");
        Recorder end(center, "End");
        std::unique_ptr<Recorder> added;
        Observation changing = center.observe("Change", Delivery::standard, [&](const Notification &) {
            changing.release();
            leaving.observation.release();
            added = std::make_unique<Recorder>(center, "Name");
        });
        const Notification post = {"Name", UserInfo{{"temperature", std::int64_t{3400}}}};

        center.post(post, Delivery::standard);
        center.post(named("Unknown"), Delivery::standard);
        center.post(named("Change"), Delivery::standard);
        QTRY_VERIFY(added);
        center.post(named("Change"), Delivery::standard);
        center.post(named("Name"), Delivery::immediate);
        center.post(named("End"), Delivery::standard);

        QTRY_COMPARE(end.received.size(), 1U);
        QCOMPARE(first.received.size(), 2U);
        QVERIFY(first.received[0].userInfo == post.userInfo && !first.received[1].userInfo);
        QCOMPARE(leaving.received.size(), 1U);
        QCOMPARE(added->received.size(), 1U);
    }

    void anObserverMayRunAnEventLoop()
    {
        BusTransport transport;
        Recorder inner(transport.center, "Inner");
        bool isSeenInside = false;
        const auto outer = transport.center.observe("Outer", Delivery::standard, [&](const Notification &) {
            transport.center.post(named("Inner"), Delivery::standard);
            isSeenInside = QTest::qWaitFor([&] { return !inner.received.empty(); });
        });
        transport.center.post(named("Outer"), Delivery::standard);
        QTRY_VERIFY(isSeenInside);
    }

    void aFloodArrivesInOrderWithoutGrowthAndLeavesTheLoopItsTurns()
    {
        constexpr std::int64_t count = 10'000;
        BusTransport transport;
        std::int64_t next = 0;
        int sinceTurn = 0;
        int mostInATurn = 0;
        const auto flooded = transport.center.observe("Flood", Delivery::standard, [&](const Notification &received) {
            next += integerValue(*received.userInfo, "temperature") == next ? 1 : 0;
            mostInATurn = std::max(mostInATurn, ++sinceTurn);
        });
        QTimer everyTurn;
        connect(&everyTurn, &QTimer::timeout, this, [&] { sinceTurn = 0; });
        everyTurn.start(0);
        const auto flood = [&] {
            next = 0;
            for (std::int64_t i = 0; i < count; ++i)
                transport.center.post({"Flood", UserInfo{{"temperature", i}}}, Delivery::standard);
        };
        flood();
        QTRY_COMPARE_WITH_TIMEOUT(next, count, 60'000);
        QVERIFY2(mostInATurn < count / 2, qPrintable(QString::number(mostInATurn)));
        const auto before = mallinfo2().uordblks;
        flood();
        QTRY_COMPARE_WITH_TIMEOUT(next, count, 60'000);
        QVERIFY(mallinfo2().uordblks < before + 100'000);
    }

    void postsWaitForABusThatIsSlow()
    {
        BusTransport transport;
        Recorder recorder(transport.center, "Name");
        transport.center.post(named("Name"), Delivery::standard);
        QTRY_COMPARE(recorder.received.size(), 1U);
        transport.bus.freeze();
        for (int i = 0; i < 200; ++i)
            transport.center.post({"Unobserved", UserInfo{{"text", std::string(100'000, ' ')}}}, Delivery::standard);
        transport.center.post(named("Name"), Delivery::standard);
        transport.bus.thaw();
        QTRY_COMPARE(recorder.received.size(), 2U);
    }

    void aBusThatIsLostIsFoundAgain()
    {
        const CapturedConsole console;
        BusTransport transport;
        Recorder recorder(transport.center, "Name");
        transport.center.post(named("Name"), Delivery::standard);
        QTRY_COMPARE(recorder.received.size(), 1U);
        transport.bus.stop();
        QTRY_COMPARE(console.lines.size(), 1U);
        transport.center.post(named("Name"), Delivery::standard);
        transport.bus.start();
        QTRY_COMPARE(console.lines.size(), 2U);
        transport.center.post(named("Name"), Delivery::standard);
        QTRY_COMPARE(recorder.received.size(), 2U);
    }

    void withoutABusOneLineSaysSoAndPostsGoNowhere()
    {
        const CapturedConsole console;
        PrivateBus bus;
        bus.stop();
        DBusSession session(SdBusKind::session);
        DBusNotificationCenter center(session);
        const Recorder recorder(center, "Name");
        center.post(named("Name"), Delivery::standard);
        QCOMPARE(console.lines.size(), 1U);
    }
};

QTEST_GUILESS_MAIN(DistributedNotificationCentersTest)
#include "DistributedNotificationCenters.moc"
