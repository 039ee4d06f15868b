#include "platform/Console.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "platform/linux/PostedSignal.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QTest>

#include <malloc.h>

#include <memory>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// A centre of the kind under test and what it needs.
struct Transport
{
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<DBusSession> session;
    std::unique_ptr<DistributedNotificationCenter> center;
};

Transport makeTransport(bool isFake)
{
    Transport transport;
    if (isFake) {
        transport.center = std::make_unique<FakeDistributedNotificationCenter>();
    } else {
        transport.bus = std::make_unique<PrivateBus>();
        transport.session = std::make_unique<DBusSession>(SdBusKind::session, 10ms);
        transport.center = std::make_unique<DBusNotificationCenter>(*transport.session);
    }
    return transport;
}

/// Records what the named notification brings.
struct Recorder
{
    std::vector<Notification> received;
    Observation observation;

    Recorder(DistributedNotificationCenter &center, const char *name)
        : observation(center.observe(name, Delivery::immediate,
                                     [this](const Notification &notification) { received.push_back(notification); }))
    {
    }
};

Notification numbered(const char *name, std::int64_t number) { return {name, UserInfo{{"temperature", number}}}; }

/// Another program on the same bus.
SdBusConnection otherProgram()
{
    auto bus = openSdBus(SdBusKind::session);
    if (!bus || !waitUntilReady(bus.get(), std::chrono::steady_clock::now() + 10s))
        qFatal("No private bus");
    return bus;
}

/// Waits until the bus has taken everything that was asked of it before.
void settle(DistributedNotificationCenter &center)
{
    const Recorder settled(center, "Settled");
    center.post({"Settled", std::nullopt}, Delivery::standard);
    QTRY_COMPARE(settled.received.size(), 1U);
}

} // namespace

class DistributedNotificationCentersTest : public QObject
{
    Q_OBJECT

    static void forEachCenter()
    {
        QTest::addColumn<bool>("isFake");
        QTest::newRow("fake") << true;
        QTest::newRow("D-Bus") << false;
    }
    std::vector<std::string> m_lines;

private Q_SLOTS:
    void init()
    {
        m_lines.clear();
        console::redirect([this](std::string_view line) { m_lines.emplace_back(line); });
    }
    void cleanup() { console::redirect({}); }

    void aPostReachesTheObserversOfItsNameAndNoOthers_data() { forEachCenter(); }
    void aPostReachesTheObserversOfItsNameAndNoOthers()
    {
        QFETCH(bool, isFake);
        auto transport = makeTransport(isFake);
        Recorder first(*transport.center, "Name");
        Recorder second(*transport.center, "Name");
        Recorder other(*transport.center, "Other");

        transport.center->post(numbered("Name", 1), Delivery::standard);
        transport.center->post({"Unknown", std::nullopt}, Delivery::standard);
        transport.center->post({"Name", std::nullopt}, Delivery::immediate);
        transport.center->post(numbered("Other", 3), Delivery::standard);

        QTRY_COMPARE(other.received.size(), 1U);
        QCOMPARE(first.received.size(), 2U);
        QVERIFY(first.received[0].userInfo == numbered("Name", 1).userInfo);
        QVERIFY(!first.received[1].userInfo);
        QCOMPARE(second.received.size(), 2U);
    }

    void observersMayComeAndGoDuringAPost_data() { forEachCenter(); }
    void observersMayComeAndGoDuringAPost()
    {
        QFETCH(bool, isFake);
        auto transport = makeTransport(isFake);
        Recorder end(*transport.center, "End");
        auto silenced = std::make_unique<Recorder>(*transport.center, "Name");
        std::unique_ptr<Recorder> added;
        Observation changing = transport.center->observe("First", Delivery::standard, [&](const Notification &) {
            changing.release();
            silenced->observation.release();
            added = std::make_unique<Recorder>(*transport.center, "Name");
        });

        transport.center->post({"First", std::nullopt}, Delivery::standard);
        QTRY_VERIFY(added);
        transport.center->post({"First", std::nullopt}, Delivery::standard);
        transport.center->post({"Name", std::nullopt}, Delivery::standard);
        transport.center->post({"End", std::nullopt}, Delivery::standard);

        QTRY_COMPARE(end.received.size(), 1U);
        QCOMPARE(silenced->received.size(), 0U);
        QCOMPARE(added->received.size(), 1U);
    }

    void anObserverMayRunAnEventLoop()
    {
        auto transport = makeTransport(false);
        Recorder inner(*transport.center, "Inner");
        bool isSeenInside = false;
        const auto outer = transport.center->observe("Outer", Delivery::standard, [&](const Notification &) {
            transport.center->post({"Inner", std::nullopt}, Delivery::standard);
            isSeenInside = QTest::qWaitFor([&] { return !inner.received.empty(); });
        });
        transport.center->post({"Outer", std::nullopt}, Delivery::standard);
        QTRY_VERIFY(isSeenInside);
    }

    void aFloodArrivesInOrderWithoutGrowthAndWithoutStarvingTheLoop()
    {
        constexpr std::int64_t count = 10'000;
        auto transport = makeTransport(false);
        std::int64_t next = 0;
        const auto flooded = transport.center->observe("Flood", Delivery::standard, [&](const Notification &received) {
            if (integerValue(*received.userInfo, "temperature") == next)
                ++next;
        });
        settle(*transport.center);
        QTimer everyTurn;
        int turns = 0;
        connect(&everyTurn, &QTimer::timeout, this, [&turns] { ++turns; });

        const auto flood = [&] {
            const auto sender = otherProgram();
            next = 0;
            for (std::int64_t i = 0; i < count; ++i)
                sd_bus_send(sender.get(), posted_signal::encode(sender.get(), numbered("Flood", i)).get(), nullptr);
            sd_bus_flush(sender.get());
        };
        flood();
        everyTurn.start(0);
        QTRY_COMPARE(next, count);
        QVERIFY2(turns > count / 100, qPrintable(QString::number(turns)));

        const auto before = mallinfo2().uordblks;
        flood();
        QTRY_COMPARE(next, count);
        QVERIFY(mallinfo2().uordblks < before + 100'000);
    }

    void whatAnyoneElsePostsIsCheckedAndStopsNothing()
    {
        auto transport = makeTransport(false);
        Recorder recorder(*transport.center, "Name");
        settle(*transport.center);
        const auto sender = otherProgram();
        const auto emit = [&](const char *types, auto... values) {
            return sd_bus_emit_signal(sender.get(), "/me/tovanu/Ambertide",
                                      "me.tovanu.Ambertide.DistributedNotificationCenter", "Posted", types, values...);
        };
        emit("s", "Name");
        emit("sa{ss}", "Name", 1, "temperature", "3400");
        emit("sa{sv}", "Name", 1, "temperature", "a{sv}", 1, "temperature", "x", std::int64_t{1});
        sd_bus_flush(sender.get());

        QTRY_COMPARE(recorder.received.size(), 1U);
        QVERIFY((*recorder.received[0].userInfo == UserInfo{{"temperature", OpaqueValue{"a{sv}"}}}));
    }

    void aBusThatIsLostIsFoundAgain()
    {
        auto transport = makeTransport(false);
        Recorder recorder(*transport.center, "Name");
        transport.center->post({"Name", std::nullopt}, Delivery::standard);
        QTRY_COMPARE(recorder.received.size(), 1U);

        transport.bus->stop();
        QTRY_COMPARE(m_lines.size(), 1U);
        transport.center->post({"Name", std::nullopt}, Delivery::standard);
        transport.bus->start();
        QTRY_COMPARE(m_lines.size(), 2U);
        transport.center->post({"Name", std::nullopt}, Delivery::standard);

        QTRY_COMPARE(recorder.received.size(), 2U);
        QCOMPARE(m_lines[1], std::string("The session bus is back"));
    }

    void withoutABusPostsGoNowhere()
    {
        const PrivateBus bus;
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        DBusSession session(SdBusKind::session, 0ms);
        DBusNotificationCenter center(session);
        const Recorder recorder(center, "Name");
        center.post({"Name", std::nullopt}, Delivery::standard);
        QCoreApplication::processEvents();
        QCOMPARE(m_lines.size(), 1U);
        QVERIFY(recorder.received.empty());
    }
};

QTEST_GUILESS_MAIN(DistributedNotificationCentersTest)
#include "DistributedNotificationCenters.moc"
