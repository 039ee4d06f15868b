#pragma once

#include "adapters/linux/displays/mutter/DisplayConfig.h"
#include "ports/DisplayServices.h"

#include <chrono>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace ambertide {

/// Mutter's CRTCs and what they are to show, which is written without blocking. Each call for a CRTC is held back until
/// the previous one has been answered, unless other tables are known to have been written in between; of tables that
/// are held back only the newest are kept. Tables that a CRTC is known to show are not written again but read back,
/// since nothing announces that another program has replaced them.
///
/// When a call is refused, the CRTCs are read again and the call is repeated once; after that, only with the next
/// show().
class MutterCrtcs
{
public:
    /// `bus` outlives this.
    explicit MutterCrtcs(sd_bus *bus) : m_bus(bus) {}
    MutterCrtcs(const MutterCrtcs &) = delete;
    MutterCrtcs &operator=(const MutterCrtcs &) = delete;

    /// Reads the CRTCs again, and after that writes all tables again.
    void reload();
    /// To be called when others have written tables, or may have: the next show() writes, whatever was shown before.
    void forgetShown();
    void show(std::span<const DisplayIdentifier> crtcs, const GammaTables &tables);
    /// Stops showing anything. Mutter still carries out a call that is under way.
    void clear();

    bool hasBeenRead() const { return m_serial.has_value(); }
    /// Those that show a picture.
    std::span<const DisplayIdentifier> active() const { return m_active; }
    /// Another program has written its own tables again and again, pass after pass.
    bool isContested() const { return m_isContested; }
    /// True once after each reload.
    bool takeReloaded() { return std::exchange(m_hasReloaded, false); }

private:
    struct Crtc
    {
        MutterCrtcs &owner;
        std::uint32_t identifier;
        std::optional<std::uint16_t> size{}; ///< of its tables, once mutter has told it
        std::optional<GammaTables> wanted{};
        std::optional<GammaRamp> sent{};  ///< by the call under way
        std::optional<GammaRamp> shown{}; ///< nothing where that is unknown
        int foreignTables = 0;            ///< seen since forgetShown(), each soon after the one before
        std::chrono::steady_clock::time_point lastForeign{}; ///< when the last of them was seen
        bool mustBeLookedAt = false;
        SdBusSlot call{}; ///< under way
    };

    /// More than mutter itself would cause, which writes late once or twice after a change.
    static constexpr int mostForeignTables = 10;

    void read();
    void takeResources(sd_bus_message *reply);
    void proceed(Crtc &crtc);
    void ask(Crtc &crtc);
    void write(Crtc &crtc, GammaRamp ramp);
    void takeGamma(Crtc &crtc, sd_bus_message *reply);
    void takeWritten(Crtc &crtc, sd_bus_message *reply);
    void takeRefusal();

    sd_bus *const m_bus;
    std::optional<std::uint32_t> m_serial;
    std::map<std::uint32_t, Crtc> m_crtcs;
    std::vector<DisplayIdentifier> m_active;
    SdBusSlot m_reading;
    bool m_mustReadAgain = false;
    bool m_mustTellReload = false;
    bool m_hasReloaded = false;
    int m_refusals = 0; ///< in a row, since the last show()
    bool m_isContested = false;
};

} // namespace ambertide
