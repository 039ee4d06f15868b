#include "adapters/linux/bus/DBusRunningApplications.h"
#include "adapters/linux/services/DBusApplicationObject.h"
#include "support/CapturedConsole.h"
#include "support/PrivateBus.h"
#include "support/busctl.h"

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
    void copiesAreFoundWhileTheyLiveAndWhenTheBusReturns()
    {
        const CapturedConsole console;
        Copy first;
        QCOMPARE(first.found(), 1U);
        std::vector<std::size_t> found;
        const auto told = first.applications.observeOthers([&] { found.push_back(first.found()); });
        m_bus.stop();
        QTRY_COMPARE(console.lines.size(), 1U); // it has noticed
        m_bus.start();
        {
            Copy second; // is there before the other has tried again
            QCOMPARE(second.found(), 1U);
            QTRY_COMPARE(found, std::vector<std::size_t>{2});
        }
        QCOMPARE(first.found(), 1U);
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
        const auto call = QStringLiteral("call me.tovanu.Ambertide /me/tovanu/Ambertide org.freedesktop.Application "
                                         "ActivateAction sava{sv} %1 1 s ignored 1 desktop-startup-id s old");
        QCOMPARE(busctl(call.arg(QStringLiteral("settings"))), QString());
        QVERIFY(!busctl(call.arg(QStringLiteral("unknown"))).isEmpty());
        second.applications.activate(found.back());
        QTRY_COMPARE(events.size(), 3U);
        QCOMPARE(events, (std::vector<std::string>{"activate token", "settings old", "activate "}));
    }
};

QTEST_GUILESS_MAIN(RunningApplicationsTest)
#include "RunningApplications.moc"
