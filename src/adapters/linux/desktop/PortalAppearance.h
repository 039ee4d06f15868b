#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "base/Observers.h"
#include "ports/Appearance.h"

#include <string>
#include <vector>

namespace ambertide {

/// The look that the desktop portal tells of: by its own keys and, since older portals have but one of those, by
/// GNOME's. It is asked at the start and whenever a portal appears; afterwards only changes of these keys are sent
/// here.
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
    Observation observe(std::function<void()> changed) override;

private:
    struct Look
    {
        ColorScheme colorScheme = ColorScheme::NoPreference;
        bool isHighContrast = false;
        bool isMotionReduced = false;
        bool operator==(const Look &) const = default;
    };

    static int noteAll(sd_bus_message *reply, void *context, sd_bus_error *);
    static int noteChange(sd_bus_message *signal, void *context, sd_bus_error *);
    static int noteOwner(sd_bus_message *signal, void *context, sd_bus_error *);
    void askForAll();
    void updateLook();

    DBusSession &m_session;
    Observers<> m_observers;
    UserInfo m_settings; ///< those that count here, by "<namespace> <key>"
    Look m_look;
    std::vector<Observation> m_matches;
    Observation m_request;
};

} // namespace ambertide
