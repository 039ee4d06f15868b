#include "platform/linux/PostedSignal.h"

#include "platform/linux/SdBusReader.h"

#include <QTest>

#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <limits>

using namespace ambertide;

namespace {

/// A connection that nobody listens to: enough to build messages on.
SdBusConnection unconnectedBus()
{
    int sockets[2] = {};
    sd_bus *bus = nullptr;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, sockets) != 0 || sd_bus_new(&bus) < 0 ||
        sd_bus_set_fd(bus, sockets[0], sockets[0]) < 0 || sd_bus_start(bus) < 0)
        qFatal("No connection");
    close(sockets[1]);
    return SdBusConnection(bus);
}

/// Ends the writing of a message, as sending does, and reads it.
std::optional<Notification> received(const SdBusMessage &message)
{
    if (!message || sd_bus_message_seal(message.get(), 1, 0) < 0)
        qFatal("The message is not complete");
    return posted_signal::decode(message.get());
}

UserInfo numbered(int count)
{
    UserInfo entries;
    for (int i = 0; i < count; ++i)
        entries.emplace("key" + std::to_string(i), std::int64_t{i});
    return entries;
}

} // namespace

Q_DECLARE_METATYPE(ambertide::Notification)
Q_DECLARE_METATYPE(std::function<void(sd_bus_message *)>)

class PostedSignalTest : public QObject
{
    Q_OBJECT

    using Write = std::function<void(sd_bus_message *)>;
    SdBusConnection m_bus = unconnectedBus();

    SdBusMessage foreign(const Write &write) const
    {
        sd_bus_message *message = nullptr;
        sd_bus_message_new_signal(m_bus.get(), &message, "/a", "a.b", "C");
        write(message);
        return SdBusMessage(message);
    }

private Q_SLOTS:
    void whatIsPostedArrivesUnchanged_data()
    {
        QTest::addColumn<Notification>("posted");
        QTest::newRow("no user info") << Notification{"Some.Name", std::nullopt};
        QTest::newRow("every kind") << Notification{"Some.Name",
                                                    UserInfo{{"", true},
                                                             {"temperature", std::int64_t{3400}},
                                                             {"least", std::numeric_limits<std::int64_t>::min()},
                                                             {"fraction", 3450.5},
                                                             {"text", std::string("warm \u2600")}}};
    }
    void whatIsPostedArrivesUnchanged()
    {
        QFETCH(Notification, posted);
        const auto notification = received(posted_signal::encode(m_bus.get(), posted));
        QVERIFY(notification);
        QCOMPARE(notification->name, posted.name);
        QVERIFY(notification->userInfo == posted.userInfo);
    }

    void aTextThatIsNoUtf8CannotBePosted()
    {
        QVERIFY(!posted_signal::encode(m_bus.get(), {"Name", UserInfo{{"key", std::string("\xff")}}}));
        QVERIFY(!posted_signal::encode(m_bus.get(), {"\xff", std::nullopt}));
    }

    void valuesOfOtherProgramsAreReadByTheirMeaning_data()
    {
        QTest::addColumn<Write>("write");
        QTest::addColumn<Notification>("expected");
        const auto with = [](const UserInfoValue &value) {
            return Notification{"Name", UserInfo{{"value", value}, {"after", true}}};
        };
        const auto row = [with](const char *type, auto value, const UserInfoValue &expected) {
            QTest::newRow(type) << Write([=](auto *message) { sd_bus_message_append(message, "v", type, value); })
                                << with(expected);
        };
        row("y", 255, std::int64_t{255});
        row("n", -5, std::int64_t{-5});
        row("q", 65535, std::int64_t{65535});
        row("i", -7, std::int64_t{-7});
        row("u", 4294967295U, std::int64_t{4294967295});
        row("t", std::uint64_t{3400}, std::int64_t{3400});
        row("o", "/path", std::string("/path"));
        row("g", "a{sv}", std::string("a{sv}"));
        row("h", 0, OpaqueValue{"h"});
        QTest::newRow("t, too large") << Write([](auto *message) { sd_bus_message_append(message, "v", "t", ~0ULL); })
                                      << with(18446744073709551615.0);
        QTest::newRow("array") << Write([](auto *message) { sd_bus_message_append(message, "v", "ai", 2, 1, 2); })
                               << with(OpaqueValue{"ai"});
        QTest::newRow("nested") << Write([](auto *message) {
            sd_bus_message_append(message, "v", "a{sv}", 2, "temperature", "x", 1LL, "b", "(sas)", "c", 1, "d");
        }) << with(OpaqueValue{"a{sv}"});
    }
    void valuesOfOtherProgramsAreReadByTheirMeaning()
    {
        QFETCH(Write, write);
        QFETCH(Notification, expected);
        const auto notification = received(foreign([&](sd_bus_message *message) {
            sd_bus_message_append(message, "s", "Name");
            sd_bus_message_open_container(message, 'a', "{sv}");
            sd_bus_message_open_container(message, 'e', "sv");
            sd_bus_message_append(message, "s", "value");
            write(message);
            sd_bus_message_close_container(message);
            sd_bus_message_append(message, "{sv}", "after", "b", 1);
            sd_bus_message_close_container(message);
        }));
        QVERIFY(notification);
        QVERIFY(notification->userInfo == expected.userInfo);
    }

    void messagesOfAnotherShapeAreNothing_data()
    {
        QTest::addColumn<Write>("write");
        QTest::newRow("empty") << Write([](auto *) {});
        QTest::newRow("no dictionary") << Write([](auto *message) { sd_bus_message_append(message, "s", "Name"); });
        QTest::newRow("other keys") << Write(
            [](auto *message) { sd_bus_message_append(message, "sa{iv}", "Name", 1, 1, "b", 1); });
        QTest::newRow("something more") << Write(
            [](auto *message) { sd_bus_message_append(message, "sa{sv}s", "Name", 0, ""); });
    }
    void messagesOfAnotherShapeAreNothing()
    {
        QFETCH(Write, write);
        QVERIFY(!received(foreign(write)));
    }

    void largeContentIsCutButTheTemperatureIsKept()
    {
        auto entries = numbered(5000);
        entries.emplace("temperature", std::int64_t{3400});
        entries.emplace("a", std::string(1023, 'a') + "\u2600" + std::string(1'000'000, 'a'));
        const auto notification = received(posted_signal::encode(m_bus.get(), {"Name", entries}));
        QVERIFY(notification && notification->userInfo);
        QCOMPARE(notification->userInfo->size(), SdBusReader::mostEntries);
        QCOMPARE(integerValue(*notification->userInfo, "temperature"), std::int64_t{3400});
        QVERIFY(notification->userInfo->at("a") == UserInfoValue(std::string(1023, 'a')));
    }

    void largeContainersArePassedOverWholeOrNotAtAll_data()
    {
        QTest::addColumn<QByteArray>("elementType");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("isRead");
        // More values than are looked at one by one.
        QTest::newRow("numbers") << QByteArray("u") << 16'000'000 << true;
        QTest::newRow("texts") << QByteArray("s") << 2'000'000 << false;
    }
    void largeContainersArePassedOverWholeOrNotAtAll()
    {
        QFETCH(QByteArray, elementType);
        QFETCH(int, count);
        QFETCH(bool, isRead);
        const auto message = foreign([&](sd_bus_message *opened) {
            sd_bus_message_append(opened, "s", "Name");
            sd_bus_message_open_container(opened, 'a', "{sv}");
            sd_bus_message_open_container(opened, 'e', "sv");
            sd_bus_message_append(opened, "s", "value");
            sd_bus_message_open_container(opened, 'v', ("a" + elementType).constData());
            sd_bus_message_open_container(opened, 'a', elementType.constData());
            const std::uint32_t zero = 0; // or an empty text
            for (int i = 0; i < count; ++i)
                sd_bus_message_append_basic(opened, elementType.front(), &zero);
            for (int depth = 0; depth < 4; ++depth)
                sd_bus_message_close_container(opened);
        });
        sd_bus_message_seal(message.get(), 1, 0);
        QCOMPARE(posted_signal::decode(message.get()).has_value(), isRead);
    }
};

QTEST_GUILESS_MAIN(PostedSignalTest)
#include "PostedSignal.moc"
