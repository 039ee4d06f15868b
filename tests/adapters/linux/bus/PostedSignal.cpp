#include "adapters/linux/bus/PostedSignal.h"

#include "adapters/linux/bus/SdBusReader.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;

class PostedSignalTest : public QObject
{
    Q_OBJECT

    PrivateBus m_daemon;
    SdBusConnection m_bus = openSdBus(SdBusKind::session);

    static std::optional<Notification> received(const SdBusMessage &message)
    {
        if (!message || sd_bus_message_seal(message.get(), 1, 0) < 0)
            qFatal("The message is not complete");
        return posted_signal::decode(message.get());
    }
    /// Reads what another program has written.
    template <typename... Values>
    std::optional<Notification> receivedFrom(const char *types, Values... values) const
    {
        sd_bus_message *message = nullptr;
        sd_bus_message_new_signal(m_bus.get(), &message, "/a", "a.b", "C");
        sd_bus_message_append(message, types, values...);
        return received(SdBusMessage(message));
    }

private Q_SLOTS:
    void valuesOfOtherProgramsAreReadAndMessagesOfAnotherShapeAreNothing()
    {
        const auto isRead = [this](const UserInfoValue &expected, const char *type, auto... values) {
            const auto read = receivedFrom("sa{sv}", "Name", 2, "value", type, values..., "after", "b", 1);
            return read && read->userInfo == UserInfo{{"value", expected}, {"after", true}};
        };
        QVERIFY(isRead(std::int64_t{-5}, "n", -5));
        QVERIFY(isRead(std::int64_t{4294967295}, "u", 4294967295U));
        QVERIFY(isRead(18446744073709551615.0, "t", ~std::uint64_t{0}));
        QVERIFY(isRead(OpaqueValue{"ai"}, "ai", 2, 1, 2));
        QVERIFY(isRead(OpaqueValue{"a{sv}"}, "a{sv}", 2, "temperature", "x", std::int64_t{1}, "b", "s", "c"));
        QVERIFY(!receivedFrom("s", "Name"));
        QVERIFY(!receivedFrom("sa{ss}", "Name", 1, "temperature", "3400"));
        QVERIFY(!receivedFrom("sa{sv}s", "Name", 0, ""));
    }

    void largeContentIsCutButTheTemperatureIsKept()
    {
        UserInfo entries = {{"temperature", std::int64_t{3400}},
                            {"a", std::string(1023, 'a') + "\u2600" + std::string(1'000'000, 'a')}};
        for (int i = 0; i < 5000; ++i)
            entries.emplace("key" + std::to_string(i), std::int64_t{i});
        const auto notification = received(posted_signal::encode(m_bus.get(), {"Name", entries}));
        QCOMPARE(notification.value().userInfo.value().size(), SdBusReader::mostEntries);
        QCOMPARE(integerValue(*notification->userInfo, "temperature"), std::int64_t{3400});
        QVERIFY(notification->userInfo->at("a") == UserInfoValue(std::string(1023, 'a')));
    }

    void messagesMadeToKeepTheReaderBusyAreNothing()
    {
        const auto arrayOf = [this](const char *contents, auto... entry) {
            sd_bus_message *message = nullptr;
            sd_bus_message_new_signal(m_bus.get(), &message, "/a", "a.b", "C");
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
};

QTEST_GUILESS_MAIN(PostedSignalTest)
#include "PostedSignal.moc"
