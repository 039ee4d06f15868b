#include "adapters/linux/desktop/LogindSystemWake.h"
#include "adapters/linux/desktop/PortalAppearance.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char appearanceGroup[] = "org.freedesktop.appearance";

/// A connection of another program, which owns a name.
struct Service
{
    SdBusConnection bus;

    Service(SdBusKind kind, const char *name) : bus(openSdBus(kind))
    {
        waitUntilReady(bus.get(), std::chrono::steady_clock::now() + 20s);
        sd_bus_request_name(bus.get(), name, 0);
    }

    template <typename... Value>
    void announce(const char *group, const char *key, const char *type, Value... value)
    {
        sd_bus_emit_signal(bus.get(), "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
                           "SettingChanged", "ssv", group, key, type, value...);
    }
};

struct Portal : Service
{
    Portal() : Service(SdBusKind::session, "org.freedesktop.portal.Desktop") {}

    /// Answers the next call.
    template <typename... Values>
    void answer(const char *types, Values... values)
    {
        SdBusMessage call;
        QVERIFY(QTest::qWaitFor([&] {
            sd_bus_message *message = nullptr;
            if (sd_bus_process(bus.get(), &message) > 0)
                call.reset(message);
            return call && sd_bus_message_is_method_call(call.get(), nullptr, nullptr) > 0;
        }));
        sd_bus_reply_method_return(call.get(), types, values...);
    }
};

} // namespace

class DesktopSignalsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLookFollowsWhatThePortalSaysAndSurvivesIt()
    {
        PrivateBus bus;
        DBusSession session(SdBusKind::session, 10ms);
        PortalAppearance appearance(session);
        int changes = 0;
        const auto observation = appearance.observe([&changes] { ++changes; });
        const auto look = [&appearance] {
            const char *schemes[] = {"any", "light", "dark"};
            return std::string(schemes[static_cast<int>(appearance.colorScheme())]) +
                   (appearance.prefersHighContrast() ? " contrast" : "") +
                   (appearance.prefersReducedMotion() ? " still" : "") + appearance.changedFont();
        };
        QCOMPARE(look(), "any");
        auto portal = std::make_unique<Portal>();
        portal->answer("a{sa{sv}}", 1, appearanceGroup, 3, "color-scheme", "v", "u", 1, "accent-color", "(ddd)", 1.0,
                       0.5, 0.0, "contrast", "v", "v", "u", 1);
        QTRY_COMPARE(look(), "dark contrast");
        portal->announce(appearanceGroup, "contrast", "u", 7);
        portal->announce(appearanceGroup, "color-scheme", "v", "u", 2);
        portal->announce(appearanceGroup, "color-scheme", "v", "u", 2);
        portal->announce("org.gnome.desktop.interface", "enable-animations", "b", 0);
        QTRY_COMPARE(look(), "light still");
        QCOMPARE(changes, 4);
        portal->announce(appearanceGroup, "color-scheme", "s", "dark");
        QTRY_COMPARE(look(), "any still");
        Service xfconf(SdBusKind::session, "org.xfce.Xfconf");
        xfconf.announce(appearanceGroup, "color-scheme", "v", "u", 2); // is not the portal
        sd_bus_emit_signal(xfconf.bus.get(), "/org/xfce/Xfconf", "org.xfce.Xfconf", "PropertyChanged", "ssv",
                           "xsettings", "/Gtk/FontName", "s", " Sans 12");
        QTRY_COMPARE(look(), "any still Sans 12");
        portal.reset();
        portal = std::make_unique<Portal>();
        portal->answer("s", "of another shape");
        bus.stop();
        bus.start();
        portal = std::make_unique<Portal>();
        portal->answer("a{sa{sv}}", 2, appearanceGroup, 1, "reduced-motion", "u", 1, "org.gnome.desktop.a11y.interface",
                       1, "high-contrast", "b", 1);
        QTRY_COMPARE(look(), "any contrast still Sans 12");
    }

    void aSleepWakesItsObserversOnce()
    {
        const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
        DBusSession session(SdBusKind::system);
        LogindSystemWake wake(session);
        int wakes = 0;
        const auto observation = wake.observe([&wakes] { ++wakes; });
        QVERIFY(session.readyBus(std::chrono::steady_clock::now() + 10s) != nullptr);
        const char *own = nullptr;
        sd_bus_get_unique_name(session.bus(), &own);
        const auto straightToIt = QStringLiteral("--system emit --destination=%1 /org/freedesktop/login1 "
                                                 "org.freedesktop.login1.Manager PrepareForSleep b false");
        QCOMPARE(
            QProcess::execute(QStringLiteral("busctl"), QProcess::splitCommand(straightToIt.arg(QLatin1String(own)))),
            0);
        int ends = 0;
        const auto ended = session.match("type='signal',member='End'", [&ends](sd_bus_message *) { ++ends; });
        for (const char *name : {"a.stranger", "org.freedesktop.login1"}) {
            const Service sender(SdBusKind::system, name);
            for (const int isGoingToSleep : {1, 0, 1})
                sd_bus_emit_signal(sender.bus.get(), "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                   "PrepareForSleep", "b", isGoingToSleep);
            sd_bus_emit_signal(sender.bus.get(), "/", "a.b", "End", "");
            sd_bus_flush(sender.bus.get());
        }
        QTRY_COMPARE(ends, 2);
        QCOMPARE(wakes, 1);
    }
};

QTEST_GUILESS_MAIN(DesktopSignalsTest)
#include "DesktopSignals.moc"
