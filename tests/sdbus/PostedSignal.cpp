#include "platform/linux/PostedSignal.h"

#include "platform/linux/SdBusReader.h"
#include "support/PrivateBus.h"

#include <QTest>

#include <functional>

using namespace ambertide;

using Write = std::function<void(sd_bus_message *)>;

Q_DECLARE_METATYPE(ambertide::Notification)
Q_DECLARE_METATYPE(Write)

class PostedSignalTest : public QObject
{
    Q_OBJECT

    PrivateBus m_daemon;
    SdBusConnection m_bus = openSdBus(SdBusKind::session);

    /// Reads what another program has written.
    std::optional<Notification> received(const Write &write) const
    {
        sd_bus_message *message = nullptr;
        sd_bus_message_new_signal(m_bus.get(), &message, "/a", "a.b", "C");
        write(message);
        return received(SdBusMessage(message));
    }
    std::optional<Notification> receivedValue(const Write &write) const
    {
        return received([&](sd_bus_message *message) {
            sd_bus_message_append(message, "s", "Name");
            sd_bus_message_open_container(message, 'a', "{sv}");
            sd_bus_message_open_container(message, 'e', "sv");
            sd_bus_message_append(message, "s", "value");
            write(message);
            sd_bus_message_close_container(message);
            sd_bus_message_append(message, "{sv}", "after", "b", 1);
            sd_bus_message_close_container(message);
        });
    }
    static std::optional<Notification> received(const SdBusMessage &message)
    {
        if (!message || sd_bus_message_seal(message.get(), 1, 0) < 0)
            qFatal("The message is not complete");
        return posted_signal::decode(message.get());
    }

private Q_SLOTS:
    void whatIsPostedArrivesUnchanged()
    {
        const Notification bare = {"Some.Name", std::nullopt};
        const Notification full = {"Some.Name", UserInfo{{"", true},
                                                         {"temperature", std::int64_t{3400}},
                                                         {"least", std::numeric_limits<std::int64_t>::min()},
                                                         {"fraction", 3450.5},
                                                         {"text", std::string("warm \u2600")}}};
        for (const auto &posted : {bare, full}) {
            const auto notification = received(posted_signal::encode(m_bus.get(), posted));
            QVERIFY(notification && notification->name == posted.name && notification->userInfo == posted.userInfo);
        }
        QVERIFY(!posted_signal::encode(m_bus.get(), {"Name", UserInfo{{"no UTF-8", std::string("\xff")}}}));
    }

    void valuesOfOtherProgramsAreReadByTheirMeaning_data()
    {
        QTest::addColumn<Write>("write");
        QTest::addColumn<Notification>("expected");
        const auto row = [](const char *type, const UserInfoValue &expected, auto... values) {
            QTest::newRow(type) << Write([=](auto *to) { sd_bus_message_append(to, "v", type, values...); })
                                << Notification{"Name", UserInfo{{"value", expected}, {"after", true}}};
        };
        row("y", std::int64_t{255}, 255);
        row("n", std::int64_t{-5}, -5);
        row("q", std::int64_t{65535}, 65535);
        row("i", std::int64_t{-7}, -7);
        row("u", std::int64_t{4294967295}, 4294967295U);
        row("t", std::int64_t{3400}, std::uint64_t{3400});
        row("t", 18446744073709551615.0, ~std::uint64_t{0});
        row("o", std::string("/path"), "/path");
        row("g", std::string("a{sv}"), "a{sv}");
        row("h", OpaqueValue{"h"}, 0);
        row("ai", OpaqueValue{"ai"}, 2, 1, 2);
        row("v", OpaqueValue{"v"}, "s", "text");
        row("a{sv}", OpaqueValue{"a{sv}"}, 2, "temperature", "x", std::int64_t{1}, "b", "(sas)", "c", 1, "d");
    }
    void valuesOfOtherProgramsAreReadByTheirMeaning()
    {
        QFETCH(Write, write);
        QFETCH(Notification, expected);
        const auto notification = receivedValue(write);
        QVERIFY(notification && notification->userInfo == expected.userInfo);
    }

    void messagesOfAnotherShapeAreNothing()
    {
        const auto isNothing = [this](const char *types, auto... values) {
            return !received([=](auto *message) { sd_bus_message_append(message, types, values...); });
        };
        QVERIFY(isNothing(""));
        QVERIFY(isNothing("s", "Name"));
        QVERIFY(isNothing("sa{ss}", "Name", 1, "temperature", "3400"));
        QVERIFY(isNothing("sa{sv}s", "Name", 0, ""));
    }

    void largeContentIsCutButTheTemperatureIsKept()
    {
        UserInfo entries = {{"temperature", std::int64_t{3400}},
                            {"a", std::string(1023, 'a') + "\u2600" + std::string(1'000'000, 'a')}};
        for (int i = 0; i < 5000; ++i)
            entries.emplace("key" + std::to_string(i), std::int64_t{i});
        const auto notification = received(posted_signal::encode(m_bus.get(), {"Name", entries}));
        QVERIFY(notification && notification->userInfo);
        QCOMPARE(notification->userInfo->size(), SdBusReader::mostEntries);
        QCOMPARE(integerValue(*notification->userInfo, "temperature"), std::int64_t{3400});
        QVERIFY(notification->userInfo->at("a") == UserInfoValue(std::string(1023, 'a')));
    }

    void largeArraysArePassedOverAsOneOrNotAtAll()
    {
        for (const char *type : {"u", "s"}) {
            const auto notification = receivedValue([type](sd_bus_message *message) {
                sd_bus_message_open_container(message, 'v', (std::string("a") + type).c_str());
                sd_bus_message_open_container(message, 'a', type);
                const std::uint32_t zero = 0; // or an empty text
                for (int i = 0; i < 2'000'000; ++i)
                    sd_bus_message_append_basic(message, *type, &zero);
                sd_bus_message_close_container(message);
                sd_bus_message_close_container(message);
            });
            QCOMPARE(notification.has_value(), *type == 'u');
        }
    }
};

QTEST_GUILESS_MAIN(PostedSignalTest)
#include "PostedSignal.moc"
