#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "adapters/linux/bus/DBusRunningApplications.h"
#include "adapters/linux/services/DBusApplicationObject.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;

namespace {

constexpr char busName[] = "me.tovanu.Ambertide";

struct Copy
{
    DBusSession session{SdBusKind::session};
    DBusRunningApplications applications{session};

    std::size_t found() { return applications.withIdentifier(busName).size(); }
};

} // namespace

class RunningApplicationsTest : public QObject
{
    Q_OBJECT

    PrivateBus m_bus;

private Q_SLOTS:
    void copiesAreFoundWhileTheyLiveAndAskingLosesNoPost()
    {
        auto first = std::make_unique<Copy>();
        Copy second;
        DBusNotificationCenter center(second.session);
        bool isReceived = false;
        const auto observation = center.observe("Name", Delivery::standard, [&](const auto &) { isReceived = true; });
        QCOMPARE(first->found(), 1U);
        QCOMPARE(first->found(), 1U);
        center.post({"Name", std::nullopt}, Delivery::standard);
        // Its answers come after the post, which is therefore read with them.
        QCOMPARE(second.found(), 2U);
        QTRY_VERIFY(isReceived);
        first.reset();
        QCOMPARE(second.found(), 1U);
    }

    void activationsReachTheRunningCopyWithTheirToken()
    {
        Copy first;
        std::vector<std::string> events;
        DBusApplicationObject object(
            first.session, [&](const auto &token) { events.push_back("activate " + token); }, [](ColorTemperature) {});
        object.setAction("settings", [&](const auto &token) { events.push_back("settings " + token); });
        QCOMPARE(first.found(), 1U);

        Copy second;
        const auto found = second.applications.withIdentifier(busName);
        qputenv("XDG_ACTIVATION_TOKEN", "token");
        second.applications.activate(found.back());
        qunsetenv("XDG_ACTIVATION_TOKEN");
        for (const char *action : {"settings", "unknown"})
            sd_bus_call_method_async(second.session.bus(), nullptr, busName, "/me/tovanu/Ambertide",
                                     "org.freedesktop.Application", "ActivateAction", nullptr, nullptr, "sava{sv}",
                                     action, 1, "s", "ignored", 1, "desktop-startup-id", "s", "old token");
        second.applications.activate(found.back());
        QTRY_COMPARE(events.size(), 3U);
        QCOMPARE(events, (std::vector<std::string>{"activate token", "settings old token", "activate "}));
    }
};

QTEST_GUILESS_MAIN(RunningApplicationsTest)
#include "RunningApplications.moc"
