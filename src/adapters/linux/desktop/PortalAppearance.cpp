#include "adapters/linux/desktop/PortalAppearance.h"

#include "adapters/linux/bus/SdBusWriter.h"

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
    for (const auto &[group, key] : allSettings)
        m_matches.push_back(session.match(signalRule({{"sender", portalName},
                                                      {"path", portalPath},
                                                      {"interface", settingsInterface},
                                                      {"member", "SettingChanged"},
                                                      {"arg0", group},
                                                      {"arg1", key}}),
                                          [this](sd_bus_message *signal) { noteChange(signal); }));
    m_matches.push_back(session.watchName(portalName, [this](bool isOwned) {
        if (isOwned)
            askForAll();
    }));
    askForAll();
}

Observation PortalAppearance::observe(std::function<void()> changed) { return m_observers.observe(std::move(changed)); }

void PortalAppearance::askForAll()
{
    const auto ask = [](sd_bus *bus) {
        auto call = SdBusWriter::call(bus, portalName, portalPath, settingsInterface, "ReadAll");
        call.container('a', "s", [&call] {
            call.add(colorSchemeSetting.group, highContrastSetting.group, animationsSetting.group);
        });
        return call.take();
    };
    m_request = m_session.call(ask, [this](sd_bus_message *reply) { noteAll(reply); });
}

void PortalAppearance::noteAll(sd_bus_message *reply)
{
    const auto groups = SdBusReader(reply).dictionaries(animationsSetting.key);
    if (!groups)
        return;
    m_settings.clear();
    for (const auto &setting : allSettings) {
        const auto group = groups->find(setting.group);
        if (group == groups->end())
            continue;
        if (const auto found = group->second.find(setting.key); found != group->second.end())
            m_settings.insert_or_assign(setting.name(), found->second);
    }
    updateLook();
}

void PortalAppearance::noteChange(sd_bus_message *signal)
{
    SdBusReader reader(signal);
    const auto group = reader.text();
    const auto key = group ? reader.text() : std::nullopt;
    auto value = key ? reader.variant() : std::nullopt;
    const bool isOurs = value && std::ranges::any_of(allSettings, [&](const Setting &setting) {
                            return setting.group == *group && setting.key == *key;
                        });
    if (!isOurs)
        return;
    m_settings.insert_or_assign(*group + ' ' + *key, *std::move(value));
    updateLook();
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
