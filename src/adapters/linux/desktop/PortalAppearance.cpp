#include "adapters/linux/desktop/PortalAppearance.h"

#include "adapters/linux/bus/SdBusWriter.h"

#include <array>
#include <cstdlib>
#include <string_view>
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
};

/// XDG Desktop Portal, "Settings": 1 is dark, 2 is light.
constexpr Setting colorSchemeSetting = {"org.freedesktop.appearance", "color-scheme"};
/// 1 asks for higher contrast.
constexpr Setting contrastSetting = {"org.freedesktop.appearance", "contrast"};
/// 1 asks for reduced motion.
constexpr Setting reducedMotionSetting = {"org.freedesktop.appearance", "reduced-motion"};
/// GNOME's settings, both booleans.
constexpr Setting highContrastSetting = {"org.gnome.desktop.a11y.interface", "high-contrast"};
constexpr Setting animationsSetting = {"org.gnome.desktop.interface", "enable-animations"};

/// A number.
constexpr Setting textSetting = {"org.gnome.desktop.interface", "text-scaling-factor"};

constexpr std::array allSettings = {colorSchemeSetting,  contrastSetting,   reducedMotionSetting,
                                    highContrastSetting, animationsSetting, textSetting};

// The range of the setting.
constexpr double smallestText = 0.5;
constexpr double largestText = 3;

/// Elsewhere the fonts are as large as people want them.
bool isGnome()
{
    const char *desktops = std::getenv("XDG_CURRENT_DESKTOP"); // a list with colons
    return desktops != nullptr && std::string_view(desktops).find("GNOME") != std::string_view::npos;
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
    m_matches.push_back(session.match(signalRule({{"sender", "org.xfce.Xfconf"},
                                                  {"interface", "org.xfce.Xfconf"},
                                                  {"member", "PropertyChanged"},
                                                  {"arg0", "xsettings"},
                                                  {"arg1", "/Gtk/FontName"}}),
                                      [this](sd_bus_message *signal) { noteXfceFont(signal); }));
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
    auto settings = SdBusReader(reply).dictionaries(animationsSetting.key);
    if (!settings)
        return;
    m_settings = *std::move(settings);
    updateLook();
}

void PortalAppearance::noteChange(sd_bus_message *signal)
{
    SdBusReader reader(signal);
    const auto group = reader.text();
    const auto key = group ? reader.text() : std::nullopt;
    auto value = key ? reader.variant() : std::nullopt;
    if (!value)
        return;
    m_settings[*group].insert_or_assign(*key, *std::move(value));
    updateLook();
}

void PortalAppearance::noteXfceFont(sd_bus_message *signal)
{
    SdBusReader reader(signal);
    const auto value = reader.text() && reader.text() ? reader.variant() : std::nullopt;
    const auto *font = value ? std::get_if<std::string>(&*value) : nullptr;
    if (font == nullptr)
        return;
    m_xfceFont = *font;
    updateLook();
}

void PortalAppearance::updateLook()
{
    const auto number = [this](const Setting &setting) { return integerValue(m_settings[setting.group], setting.key); };
    const auto is = [this](const Setting &setting, bool value) {
        const auto &group = m_settings[setting.group];
        const auto found = group.find(setting.key);
        return found != group.end() && found->second == UserInfoValue(value);
    };
    Look look;
    if (const auto scheme = number(colorSchemeSetting); scheme == 1 || scheme == 2)
        look.colorScheme = scheme == 1 ? ColorScheme::Dark : ColorScheme::Light;
    look.isHighContrast = number(contrastSetting) == 1 || is(highContrastSetting, true);
    look.isMotionReduced = number(reducedMotionSetting) == 1 || is(animationsSetting, false);
    look.changedFont = m_xfceFont;
    const auto factor = numberValue(m_settings[textSetting.group], textSetting.key);
    if (factor >= smallestText && factor <= largestText && isGnome())
        look.textFactor = *factor;
    if (std::exchange(m_look, look) != look)
        m_session.afterMessage([this] { m_observers.notify(); });
}

} // namespace ambertide
