#pragma once

#include "adapters/linux/displays/mutter/MutterCrtcs.h"
#include "adapters/linux/displays/profiles/ColourProfiles.h"
#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "adapters/linux/displays/shared/GuardianProcess.h"
#include "adapters/linux/displays/shared/PollSet.h"
#include "base/UserInfo.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ambertide {

/// The displays of GNOME, by mutter's service on the session bus. A display is a CRTC with a mode.
///
/// Mutter writes tables of its own when displays change, when the default profile of one does, and for Night Light;
/// Ambertide's are written again then. While a tint is on, this connection owns a name on the bus that says so (see
/// TintName.h), and a guardian process stands by to restore the displays. It also does so when this object is destroyed
/// without a restore().
class MutterBackend final : public DisplayBackend
{
public:
    /// Why GNOME's displays cannot be tinted in this session, a phrase for the user; empty when they can. Waits for the
    /// bus, not for long.
    static std::string refusal();

    /// Connects to the session bus. `guardian` is the path of the guardian's program, which has its restorer beside it.
    explicit MutterBackend(const std::filesystem::path &guardian);
    MutterBackend(const MutterBackend &) = delete;
    MutterBackend &operator=(const MutterBackend &) = delete;

    std::span<const DisplayIdentifier> displays() const override;
    bool write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait) override;
    void restore() override;
    int descriptor() const override;
    std::optional<Clock::time_point> due() const override;
    bool process() override;
    GuardianProcess *guardian() override { return &m_guardian; }

private:
    void tryToRestore();
    bool connect();
    void connectToSystemBus();
    void disconnect();
    void watch(const std::string &rule, sd_bus_message_handler_t handler);
    void askForNightLight();
    void beginTint();
    void takeNightLight(const std::optional<UserInfo> &properties);
    void sayNightLight();
    void noteChange();
    void noteWake();

    GuardianProcess m_guardian;
    PollSet m_sources; ///< the two connections
    SdBusConnection m_bus;
    SdBusConnection m_systemBus;        ///< null where there is none
    std::optional<MutterCrtcs> m_crtcs; ///< as long as there is a connection
    std::vector<SdBusSlot> m_slots;
    ColourProfileWatch m_profileWatch;
    Clock::time_point m_nextAttempt{};              ///< to connect
    std::optional<Clock::time_point> m_nextRestore; ///< when mutter has not confirmed the last one
    std::vector<Clock::time_point> m_looks;         ///< at the tables, unasked: when, the soonest last
    std::chrono::nanoseconds m_timeAsleep;
    int m_restoresLeft = 0;
    bool m_isTinting = false;
    bool m_isNightLightActive = false;
    bool m_isNightLightSaid = false;
    bool m_isContestSaid = false;
    bool m_mustWriteAgain = false;
};

} // namespace ambertide
