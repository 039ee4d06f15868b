#pragma once

#include "adapters/linux/displays/randr/Calibrations.h"
#include "adapters/linux/displays/randr/RandrConnection.h"
#include "adapters/linux/displays/randr/TintClaim.h"
#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "adapters/linux/displays/shared/GuardianProcess.h"
#include "adapters/linux/displays/shared/PollSet.h"

#include <filesystem>
#include <optional>
#include <string>

namespace ambertide {

/// The displays of an X server, by RandR 1.3. A display is a CRTC with a mode.
///
/// A connection that is lost or could not be made is tried again with each later write or restore; a server through
/// which displays cannot be tinted is not asked again. One line reports either, and one the return of the server.
///
/// The system's own colours are a display's calibration, where colord has one for it, and the identity elsewhere; a
/// tint is passed through the calibration. While a tint is on, a guardian process stands by to restore these colours.
/// It also does so when this object is destroyed without a restore().
///
/// Of several copies the one that was the last to begin has the displays; the others leave them alone until it has
/// ended, and each says so in one line.
class RandrBackend final : public DisplayBackend
{
public:
    /// Connects to the server of that name. `guardian` is the path of the guardian's program.
    RandrBackend(std::string display, std::filesystem::path guardian);

    std::span<const DisplayIdentifier> displays() const override { return m_displays; }
    bool write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait) override;
    void restore() override;
    std::optional<TintRefusal> tintRefusal() const override;
    int descriptor() const override;
    std::optional<Clock::time_point> due() const override;
    bool process() override;
    GuardianProcess *guardian() override { return &m_guardian; }

private:
    bool connect();
    void readDisplays();
    bool readCalibrations();
    std::string obstacle() const;
    void report(RandrConnection::State state);
    bool ownsDisplays();

    const std::string m_display;
    GuardianProcess m_guardian;
    std::optional<RandrConnection> m_server;
    std::optional<TintClaim> m_claim; ///< from the first write or restore of this connection on
    xcb_atom_t m_selection = XCB_NONE;
    Calibrations m_calibrations;
    std::vector<std::string> m_outputs;                 ///< whose calibrations are known or asked for
    PollSet m_sources;                                  ///< the server and the calibrations
    std::optional<Clock::time_point> m_calibrationsDue; ///< when they are to be read; in the past: at once
    bool m_isRestored = false;                          ///< by this object, which has not tinted since
    bool m_hasYielded = false;                          ///< to another copy
    std::vector<DisplayIdentifier> m_displays;
    bool m_hasChanges = false; ///< received while waiting for an answer, so the descriptor does not show them
    RandrConnection::State m_reported = RandrConnection::State::usable;
};

} // namespace ambertide
