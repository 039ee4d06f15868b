#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "support/CapturedConsole.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;
using enum Delivery;

class DistributedNotificationCentersTest : public QObject
{
    Q_OBJECT

    PrivateBus m_bus;
    DBusSession m_session{SdBusKind::session, 10ms};
    DBusNotificationCenter m_center{m_session};

    void post(const char *name, std::optional<UserInfo> userInfo = {}) { m_center.post({name, userInfo}, standard); }

private Q_SLOTS:
    void aFloodArrivesInOrderAndLeavesTheLoopItsTurns()
    {
        constexpr std::int64_t count = 10'000;
        std::int64_t next = 0;
        int sinceTurn = 0;
        int mostInATurn = 0;
        const auto flooded = m_center.observe("Flood", standard, [&](const Notification &received) {
            next += integerValue(*received.userInfo, "temperature") == next ? 1 : 0;
            mostInATurn = std::max(mostInATurn, ++sinceTurn);
        });
        QTimer everyTurn;
        connect(&everyTurn, &QTimer::timeout, this, [&] { sinceTurn = 0; });
        everyTurn.start(0);
        for (std::int64_t i = 0; i < count; ++i)
            post("Flood", UserInfo{{"temperature", i}});
        QTRY_COMPARE_WITH_TIMEOUT(next, count, 60'000);
        QVERIFY2(mostInATurn < count / 2, qPrintable(QString::number(mostInATurn)));
    }

    void postsWaitForASlowBusAndALostOneIsFoundAgain()
    {
        const CapturedConsole console;
        int received = 0;
        const auto observation = m_center.observe("Name", standard, [&](const auto &) { ++received; });
        m_bus.freeze();
        for (int i = 0; i < 200; ++i)
            post("Unobserved", UserInfo{{"text", std::string(100'000, ' ')}});
        post("Name");
        m_bus.thaw();
        QTRY_COMPARE(received, 1);
        m_bus.stop();
        QTRY_COMPARE(console.lines.size(), 1U);
        post("Name");
        m_bus.start();
        QTRY_COMPARE(console.lines.size(), 2U);
        post("Name");
        QTRY_COMPARE(received, 2);
    }
};

QTEST_GUILESS_MAIN(DistributedNotificationCentersTest)
#include "DistributedNotificationCenters.moc"
