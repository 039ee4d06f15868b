#include "adapters/linux/desktop/PortalAppearance.h"

#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char appearanceGroup[] = "org.freedesktop.appearance";

/// Answers every call alike while it lives.
struct Portal
{
    std::function<void(sd_bus_message *reply)> answer;
    int calls = 0;
    DBusSession session{SdBusKind::session};
    Observation filter = session.install([this](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        sd_bus_add_filter(bus, &slot, receive, this);
        return SdBusSlot(slot);
    });

    explicit Portal(std::function<void(sd_bus_message *reply)> answerCall) : answer(std::move(answerCall))
    {
        sd_bus_request_name(session.readyBus(std::chrono::steady_clock::now() + 20s), "org.freedesktop.portal.Desktop",
                            0);
    }

    static int receive(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &portal = *static_cast<Portal *>(context);
        sd_bus_message *reply = nullptr;
        if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0 ||
            sd_bus_message_new_method_return(call, &reply) < 0)
            return 0;
        const SdBusMessage owner(reply);
        portal.answer(reply);
        portal.session.send(owner);
        return ++portal.calls;
    }

    template <typename... Value>
    void announce(const char *group, const char *key, const char *type, Value... value)
    {
        sd_bus_emit_signal(session.bus(), "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
                           "SettingChanged", "ssv", group, key, type, value...);
    }
};

} // namespace

class PortalAppearanceTest : public QObject
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
                   (appearance.prefersReducedMotion() ? " still" : "");
        };
        QCOMPARE(look(), "any");
        {
            Portal portal([](auto *reply) {
                sd_bus_message_append(reply, "a{sa{sv}}", 1, appearanceGroup, 3, "color-scheme", "v", "u", 1,
                                      "accent-color", "(ddd)", 1.0, 0.5, 0.0, "contrast", "v", "v", "u", 1);
            });
            QTRY_COMPARE(look(), "dark contrast");
            portal.announce(appearanceGroup, "contrast", "u", 7);
            portal.announce(appearanceGroup, "color-scheme", "v", "u", 2);
            portal.announce(appearanceGroup, "color-scheme", "v", "u", 2);
            portal.announce("org.gnome.desktop.interface", "enable-animations", "b", 0);
            QTRY_COMPARE(look(), "light still");
            QCOMPARE(changes, 4);
            portal.announce(appearanceGroup, "color-scheme", "s", "dark");
            QTRY_COMPARE(look(), "any still");
        }
        {
            Portal portal([](auto *reply) { sd_bus_message_append(reply, "s", "of another shape"); });
            QTRY_COMPARE(portal.calls, 1);
        }
        bus.stop();
        bus.start();
        Portal other([](auto *reply) {
            sd_bus_message_append(reply, "a{sa{sv}}", 2, appearanceGroup, 1, "reduced-motion", "u", 1,
                                  "org.gnome.desktop.a11y.interface", 1, "high-contrast", "b", 1);
        });
        QTRY_COMPARE(look(), "any contrast still");
    }
};

QTEST_GUILESS_MAIN(PortalAppearanceTest)
#include "PortalAppearance.moc"
