#include "platform/linux/FeedbackdHapticPerformer.h"
#include "platform/linux/PortalAppearance.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char appearanceGroup[] = "org.freedesktop.appearance";
constexpr char portalName[] = "org.freedesktop.portal.Desktop";

/// A service of the desktop that answers every call alike while it lives.
struct Service
{
    using Handler = std::function<void(sd_bus_message *call, sd_bus_message *reply)>;

    Handler handler;
    DBusSession session{SdBusKind::session};
    Observation filter = session.install([this](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        sd_bus_add_filter(bus, &slot, receive, this);
        return SdBusSlot(slot);
    });

    Service(const char *name, Handler handleCall) : handler(std::move(handleCall))
    {
        sd_bus_request_name(session.readyBus(std::chrono::steady_clock::now() + 20s), name, 0);
    }

    static int receive(sd_bus_message *call, void *context, sd_bus_error *)
    {
        sd_bus_message *reply = nullptr;
        if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0 ||
            sd_bus_message_new_method_return(call, &reply) < 0)
            return 0;
        const SdBusMessage owner(reply);
        static_cast<Service *>(context)->handler(call, reply);
        static_cast<Service *>(context)->session.send(owner);
        return 1;
    }

    template <typename... Value>
    void announce(const char *group, const char *key, const char *type, Value... value)
    {
        sd_bus_emit_signal(session.bus(), "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
                           "SettingChanged", "ssv", group, key, type, value...);
    }
};

QString describe(const PortalAppearance &appearance)
{
    const char *schemes[] = {"any", "light", "dark"};
    return QLatin1String(schemes[static_cast<int>(appearance.colorScheme())]) +
           QLatin1String(appearance.prefersHighContrast() ? " contrast" : "") +
           QLatin1String(appearance.prefersReducedMotion() ? " still" : "");
}

} // namespace

class DesktopServicesTest : public QObject
{
    Q_OBJECT

    PrivateBus m_bus;
    DBusSession m_session{SdBusKind::session, 10ms};

private Q_SLOTS:
    void theLookFollowsWhatThePortalSaysAndSurvivesIt()
    {
        PortalAppearance appearance(m_session);
        int changes = 0;
        const auto observation = appearance.observe([&changes] { ++changes; });
        QCOMPARE(describe(appearance), QStringLiteral("any"));
        {
            Service portal(portalName, [](auto *, auto *reply) {
                sd_bus_message_append(reply, "a{sa{sv}}", 1, appearanceGroup, 3, "color-scheme", "v", "u", 1,
                                      "accent-color", "(ddd)", 1.0, 0.5, 0.0, "contrast", "v", "v", "u", 1);
            });
            QTRY_COMPARE(describe(appearance), QStringLiteral("dark contrast"));
            portal.announce(appearanceGroup, "contrast", "u", 7);
            portal.announce(appearanceGroup, "color-scheme", "v", "u", 2);
            portal.announce(appearanceGroup, "color-scheme", "v", "u", 2);
            portal.announce("org.gnome.desktop.interface", "enable-animations", "b", 0);
            QTRY_COMPARE(describe(appearance), QStringLiteral("light still"));
            QCOMPARE(changes, 4);
            portal.announce(appearanceGroup, "color-scheme", "s", "dark");
            QTRY_COMPARE(describe(appearance), QStringLiteral("any still"));
        }
        bool isAsked = false;
        {
            Service portal(portalName, [&](auto *, auto *reply) {
                sd_bus_message_append(reply, "s", "of another shape");
                isAsked = true;
            });
            QTRY_VERIFY(isAsked);
        }
        const auto answerWithMany = [](auto *, sd_bus_message *reply) {
            sd_bus_message_open_container(reply, 'a', "{sa{sv}}");
            sd_bus_message_append(reply, "{sa{sv}}", "org.gnome.desktop.a11y.interface", 1, "high-contrast", "b", 1);
            sd_bus_message_open_container(reply, 'e', "sa{sv}");
            sd_bus_message_append(reply, "s", "org.gnome.desktop.interface");
            sd_bus_message_open_container(reply, 'a', "{sv}");
            for (int i = 0; i < 1000; ++i)
                sd_bus_message_append(reply, "{sv}", std::to_string(i).c_str(), "s", "ignored");
            sd_bus_message_append(reply, "{sv}", "enable-animations", "b", 0);
            for (int depth = 0; depth < 3; ++depth)
                sd_bus_message_close_container(reply);
        };
        Service portal(portalName, answerWithMany);
        QTRY_COMPARE(describe(appearance), QStringLiteral("any contrast still"));

        m_bus.stop();
        m_bus.start();
        Service other(portalName, [](auto *, auto *reply) {
            sd_bus_message_append(reply, "a{sa{sv}}", 1, appearanceGroup, 1, "reduced-motion", "u", 1);
        });
        QTRY_COMPARE(describe(appearance), QStringLiteral("any still"));
    }

    void levelChangesAreFeltWhileTheServiceRunsAndNeverStartIt()
    {
        FeedbackdHapticPerformer performer(m_session);
        QVERIFY(m_session.readyBus(std::chrono::steady_clock::now() + 20s) != nullptr);
        performer.performLevelChange();
        QStringList calls;
        Service feedback("org.sigxcpu.Feedback", [&](sd_bus_message *call, sd_bus_message *) {
            const char *application = nullptr;
            const char *event = nullptr;
            const char *profile = nullptr;
            int timeout = 0;
            sd_bus_message_read(call, "ssa{sv}i", &application, &event, 1, nullptr, "s", &profile, &timeout);
            for (const char *text : {application, event, profile})
                calls += QLatin1String(text);
            QCOMPARE(timeout, -1);
            QCOMPARE(sd_bus_message_get_auto_start(call) + sd_bus_message_get_expect_reply(call), 0);
        });
        performer.performLevelChange();
        QTRY_COMPARE(calls, QStringLiteral("me.tovanu.Ambertide button-pressed quiet").split(u' '));
    }
};

QTEST_GUILESS_MAIN(DesktopServicesTest)
#include "DesktopServices.moc"
