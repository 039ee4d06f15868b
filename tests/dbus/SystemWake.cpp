#include "platform/Console.h"
#include "platform/linux/LogindSystemWake.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// What logind does before and after a sleep.
class FakeLogind
{
public:
    FakeLogind()
    {
        if (!waitUntilReady(m_bus.get(), std::chrono::steady_clock::now() + 10s) ||
            sd_bus_request_name(m_bus.get(), "org.freedesktop.login1", 0) < 0)
            qFatal("No private bus");
    }
    void announce(bool isGoingToSleep) const
    {
        sd_bus_emit_signal(m_bus.get(), "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                           "b", static_cast<int>(isGoingToSleep));
        sd_bus_flush(m_bus.get());
    }

private:
    SdBusConnection m_bus = openSdBus(SdBusKind::system);
};

} // namespace

class SystemWakeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSleepWakesItsObserversOnce()
    {
        PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
        DBusSession session(SdBusKind::system, 10ms);
        LogindSystemWake wake(session);
        int wakes = 0;
        int otherWakes = 0;
        const auto observation = wake.observe([&] { ++wakes; });
        auto other = wake.observe([&] { ++otherWakes; });
        QVERIFY(session.readyBus(std::chrono::steady_clock::now() + 10s) != nullptr);
        const auto sleep = [](const FakeLogind &logind) {
            logind.announce(true);
            logind.announce(false);
        };

        sleep(FakeLogind());
        QTRY_COMPARE(wakes, 1);
        QCOMPARE(otherWakes, 1);

        other.release();
        std::vector<std::string> lines;
        console::redirect([&](std::string_view line) { lines.emplace_back(line); });
        bus.stop();
        QTRY_COMPARE(lines.size(), 1U);
        bus.start();
        QTRY_COMPARE(lines.size(), 2U);
        console::redirect({});
        sleep(FakeLogind());
        QTRY_COMPARE(wakes, 2);
        QCOMPARE(otherWakes, 1);
    }

    void withoutASystemBusOneLineSaysSo()
    {
        const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
        std::vector<std::string> lines;
        console::redirect([&](std::string_view line) { lines.emplace_back(line); });
        DBusSession session(SdBusKind::system);
        LogindSystemWake wake(session);
        const auto observation = wake.observe([] {});
        console::redirect({});
        QCOMPARE(lines.size(), 1U);
    }
};

QTEST_GUILESS_MAIN(SystemWakeTest)
#include "SystemWake.moc"
