#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "adapters/linux/bus/PostedSignal.h"
#include "adapters/linux/bus/SdBusReader.h"
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
    static std::optional<Notification> decoded(const SdBusMessage &message)
    {
        if (!message || sd_bus_message_seal(message.get(), 1, 0) < 0)
            qFatal("The message is not complete");
        return posted_signal::decode(message.get());
    }
    /// Reads what another program has written.
    template <typename... Values>
    std::optional<Notification> decodedFrom(const char *types, Values... values) const
    {
        sd_bus_message *message = nullptr;
        sd_bus_message_new_signal(m_session.bus(), &message, "/a", "a.b", "C");
        sd_bus_message_append(message, types, values...);
        return decoded(SdBusMessage(message));
    }

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

    void valuesOfOtherProgramsAreReadAndMessagesOfAnotherShapeAreNothing()
    {
        const auto isRead = [this](const UserInfoValue &expected, const char *type, auto... values) {
            const auto read = decodedFrom("sa{sv}", "Name", 2, "value", type, values..., "after", "b", 1);
            return read && read->userInfo == UserInfo{{"value", expected}, {"after", true}};
        };
        QVERIFY(isRead(std::int64_t{-5}, "n", -5));
        QVERIFY(isRead(std::int64_t{4294967295}, "u", 4294967295U));
        QVERIFY(isRead(18446744073709551615.0, "t", ~std::uint64_t{0}));
        QVERIFY(isRead(OpaqueValue{"ai"}, "ai", 2, 1, 2));
        QVERIFY(isRead(OpaqueValue{"a{sv}"}, "a{sv}", 2, "temperature", "x", std::int64_t{1}, "b", "s", "c"));
        QVERIFY(!decodedFrom("s", "Name"));
        QVERIFY(!decodedFrom("sa{ss}", "Name", 1, "temperature", "3400"));
        QVERIFY(!decodedFrom("sa{sv}s", "Name", 0, ""));
    }

    void largeContentIsCutButTheTemperatureIsKept()
    {
        UserInfo entries = {{"temperature", std::int64_t{3400}},
                            {"a", std::string(1023, 'a') + "\u2600" + std::string(1'000'000, 'a')}};
        for (int i = 0; i < 5000; ++i)
            entries.emplace("key" + std::to_string(i), std::int64_t{i});
        const auto notification = decoded(posted_signal::encode(m_session.bus(), {"Name", entries}));
        QCOMPARE(notification.value().userInfo.value().size(), SdBusReader::mostEntries);
        QCOMPARE(integerValue(*notification->userInfo, "temperature"), std::int64_t{3400});
        QVERIFY(notification->userInfo->at("a") == UserInfoValue(std::string(1023, 'a')));
    }

    void messagesMadeToKeepTheReaderBusyAreNothing()
    {
        const auto arrayOf = [this](const char *contents, auto... entry) {
            sd_bus_message *message = nullptr;
            sd_bus_message_new_signal(m_session.bus(), &message, "/a", "a.b", "C");
            sd_bus_message_open_container(message, 'a', contents);
            for (int i = 0; i < 200'000; ++i)
                sd_bus_message_append(message, contents, entry...);
            sd_bus_message_close_container(message);
            sd_bus_message_seal(message, 1, 0);
            return SdBusMessage(message);
        };
        QVERIFY(!SdBusReader(arrayOf("{sv}", "", "s", "").get()).dictionary());
        QVERIFY(!SdBusReader(arrayOf("s", "").get()).texts());
        QVERIFY(!SdBusReader(arrayOf("s", "").get()).skip());
        QVERIFY(SdBusReader(arrayOf("u", 0).get()).skip());
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
