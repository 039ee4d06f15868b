#include "adapters/linux/desktop/LogindSystemWake.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

class SystemWakeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSleepWakesItsObserversOnce()
    {
        const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
        DBusSession session(SdBusKind::system);
        LogindSystemWake wake(session);
        int wakes = 0;
        const auto observation = wake.observe([&wakes] { ++wakes; });
        wake.observe([&wakes] { wakes += 100; }).release();
        QVERIFY(session.readyBus(std::chrono::steady_clock::now() + 10s) != nullptr);

        const auto logind = openSdBus(SdBusKind::system);
        QVERIFY(waitUntilReady(logind.get(), std::chrono::steady_clock::now() + 10s));
        QVERIFY(sd_bus_request_name(logind.get(), "org.freedesktop.login1", 0) >= 0);
        for (const int isGoingToSleep : {1, 0, 1})
            sd_bus_emit_signal(logind.get(), "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                               "PrepareForSleep", "b", isGoingToSleep);
        sd_bus_flush(logind.get());
        QTRY_COMPARE(wakes, 1);
    }
};

QTEST_GUILESS_MAIN(SystemWakeTest)
#include "SystemWake.moc"
