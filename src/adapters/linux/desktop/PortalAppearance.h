#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "base/Observers.h"
#include "ports/Appearance.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace ambertide {

/// The desktop's look, as its portal tells it in the portal's own settings and, because older portals have only one of
/// those, in GNOME's. Also Xfce's font, which the toolkit reads only once. The portal is asked for everything at the
/// start and whenever one appears on the bus; after that the bus sends only changes of these settings.
class PortalAppearance final : public Appearance
{
public:
    /// `session` must outlive this.
    explicit PortalAppearance(DBusSession &session);
    PortalAppearance(const PortalAppearance &) = delete;
    PortalAppearance &operator=(const PortalAppearance &) = delete;

    ColorScheme colorScheme() const override { return m_look.colorScheme; }
    bool prefersHighContrast() const override { return m_look.isHighContrast; }
    bool prefersReducedMotion() const override { return m_look.isMotionReduced; }
    std::string changedFont() const override { return m_look.changedFont; }
    double textFactor() const override { return m_look.textFactor; }
    Observation observe(std::function<void()> changed) override;

private:
    struct Look
    {
        ColorScheme colorScheme = ColorScheme::NoPreference;
        bool isHighContrast = false;
        bool isMotionReduced = false;
        std::string changedFont;
        double textFactor = 1;
        bool operator==(const Look &) const = default;
    };

    void askForAll();
    void noteAll(sd_bus_message *reply);
    void noteChange(sd_bus_message *signal);
    void noteXfceFont(sd_bus_message *signal);
    void updateLook();

    DBusSession &m_session;
    Observers<> m_observers;
    std::string m_xfceFont;
    std::map<std::string, UserInfo, std::less<>> m_settings; ///< by namespace
    Look m_look;
    std::vector<Observation> m_matches;
    Observation m_request;
};

} // namespace ambertide
