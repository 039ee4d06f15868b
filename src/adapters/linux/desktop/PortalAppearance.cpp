#include "adapters/linux/desktop/PortalAppearance.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ambertide {

namespace {

constexpr char portalName[] = "org.freedesktop.portal.Desktop";
constexpr char portalPath[] = "/org/freedesktop/portal/desktop";
constexpr char settingsInterface[] = "org.freedesktop.portal.Settings";

struct Setting
{
    const char *group;
    const char *key;

    std::string name() const { return std::string(group) + ' ' + key; }
};

/// XDG Desktop Portal, "Settings": 1 is dark, 2 is light.
constexpr Setting colorSchemeSetting = {"org.freedesktop.appearance", "color-scheme"};
/// 1 is higher.
constexpr Setting contrastSetting = {"org.freedesktop.appearance", "contrast"};
/// 1 is reduced.
constexpr Setting reducedMotionSetting = {"org.freedesktop.appearance", "reduced-motion"};
/// Truth values of GNOME's settings.
constexpr Setting highContrastSetting = {"org.gnome.desktop.a11y.interface", "high-contrast"};
constexpr Setting animationsSetting = {"org.gnome.desktop.interface", "enable-animations"};

constexpr std::array allSettings = {colorSchemeSetting, contrastSetting, reducedMotionSetting, highContrastSetting,
                                    animationsSetting};

bool isTrue(const UserInfo &settings, const Setting &setting, bool otherwise)
{
    const auto found = settings.find(setting.name());
    const bool *value = found != settings.end() ? std::get_if<bool>(&found->second) : nullptr;
    return value != nullptr ? *value : otherwise;
}

} // namespace

PortalAppearance::PortalAppearance(DBusSession &session) : m_session(session)
{
    const auto match = [this](const std::string &rule, sd_bus_message_handler_t handler) {
        m_matches.push_back(
            m_session.install([this, rule, handler](sd_bus *bus) { return addMatch(bus, rule, handler, this); }));
    };
    for (const auto &[group, key] : allSettings)
        match(std::string("type='signal',sender='") + portalName + "',path='" + portalPath + "',interface='" +
                  settingsInterface + "',member='SettingChanged',arg0='" + group + "',arg1='" + key + '\'',
              noteChange);
    match(std::string("type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
                      "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='") +
              portalName + '\'',
          noteOwner);
    askForAll();
}

Observation PortalAppearance::observe(std::function<void()> changed)
{
    return m_observers.observe(std::move(changed));
}

void PortalAppearance::askForAll()
{
    m_request = m_session.install([this](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        sd_bus_call_method_async(bus, &slot, portalName, portalPath, settingsInterface, "ReadAll", noteAll, this, "as",
                                 3, colorSchemeSetting.group, highContrastSetting.group, animationsSetting.group);
        return SdBusSlot(slot);
    });
}

int PortalAppearance::noteAll(sd_bus_message *reply, void *context, sd_bus_error *)
{
    auto &appearance = *static_cast<PortalAppearance *>(context);
    if (sd_bus_message_is_method_error(reply, nullptr) != 0)
        return 0;
    const auto groups = SdBusReader(reply).dictionaries(animationsSetting.key);
    if (!groups)
        return 0;
    appearance.m_settings.clear();
    for (const auto &setting : allSettings) {
        const auto group = groups->find(setting.group);
        if (group == groups->end())
            continue;
        if (const auto found = group->second.find(setting.key); found != group->second.end())
            appearance.m_settings.insert_or_assign(setting.name(), found->second);
    }
    appearance.updateLook();
    return 0;
}

int PortalAppearance::noteChange(sd_bus_message *signal, void *context, sd_bus_error *)
{
    SdBusReader reader(signal);
    const auto group = reader.text();
    const auto key = group ? reader.text() : std::nullopt;
    auto value = key ? reader.variant() : std::nullopt;
    const bool isOurs = value && std::ranges::any_of(allSettings, [&](const Setting &setting) {
                            return setting.group == *group && setting.key == *key;
                        });
    if (!isOurs)
        return 0;
    auto &appearance = *static_cast<PortalAppearance *>(context);
    appearance.m_settings.insert_or_assign(*group + ' ' + *key, *std::move(value));
    appearance.updateLook();
    return 0;
}

int PortalAppearance::noteOwner(sd_bus_message *signal, void *context, sd_bus_error *)
{
    SdBusReader reader(signal);
    reader.text(); // the name
    reader.text(); // its owner so far
    auto &appearance = *static_cast<PortalAppearance *>(context);
    if (const auto owner = reader.text(); owner && !owner->empty())
        appearance.m_session.afterMessage([&appearance] { appearance.askForAll(); });
    return 0;
}

void PortalAppearance::updateLook()
{
    Look look;
    const auto number = [this](const Setting &setting) { return integerValue(m_settings, setting.name()); };
    if (const auto scheme = number(colorSchemeSetting); scheme == 1 || scheme == 2)
        look.colorScheme = scheme == 1 ? ColorScheme::Dark : ColorScheme::Light;
    look.isHighContrast = number(contrastSetting) == 1 || isTrue(m_settings, highContrastSetting, false);
    look.isMotionReduced = number(reducedMotionSetting) == 1 || !isTrue(m_settings, animationsSetting, true);
    if (std::exchange(m_look, look) != look)
        m_session.afterMessage([this] { m_observers.notify(); });
}

} // namespace ambertide
