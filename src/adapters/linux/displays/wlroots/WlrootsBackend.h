#pragma once

#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "adapters/linux/displays/shared/GuardianProcess.h"
#include "adapters/linux/displays/wlroots/WlrootsCompositor.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// The displays of a Wayland compositor with zwlr_gamma_control_manager_v1: sway, labwc, wayfire, river, niri,
/// Hyprland.
///
/// A connection that is lost is made again, after a pause that grows to 8 s; one line reports the loss and one the
/// return. What a display shows already is not written again, since no other program can write there, unless the
/// machine has slept meanwhile.
///
/// The system's own colours are the compositor's, which it shows by itself when a control is given up or its program
/// has ended. Hyprland does so only with its next frame, so there a guardian process stands by.
class WlrootsBackend final : public DisplayBackend
{
public:
    /// Why the displays of the compositor at that socket cannot be tinted, a phrase for the user; empty when they can.
    /// Waits for the compositor.
    static std::string refusal(const std::string &display);

    /// Connects to the compositor at the socket of that name or path. `guardian` is the path of the guardian's program.
    WlrootsBackend(std::string display, std::filesystem::path guardian);

    std::span<const DisplayIdentifier> displays() const override { return m_displays; }
    bool write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait) override;
    void restore() override;
    int descriptor() const override { return m_compositor ? m_compositor->descriptor() : -1; }
    std::optional<Clock::time_point> due() const override;
    bool process() override;
    std::optional<TintRefusal> tintRefusal() const override;
    GuardianProcess *guardian() override { return &m_guardian; }

private:
    bool connect();
    void lose();

    const std::string m_display;
    GuardianProcess m_guardian;
    std::optional<WlrootsCompositor> m_compositor; ///< none while the connection is lost
    std::vector<DisplayIdentifier> m_displays;
    std::chrono::nanoseconds m_slept{}; ///< by the machine, as of the last write: see timeAsleep()
    std::chrono::milliseconds m_pause;  ///< before the next attempt to connect, once the connection is lost
    Clock::time_point m_changed;        ///< when the connection was made or is to be tried
    bool m_isLossSaid = false;
};

} // namespace ambertide
