#pragma once

#include "adapters/linux/displays/mutter/DisplayConfig.h"
#include "ports/DisplayServices.h"

#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace ambertide {

/// The CRTCs of mutter and what they are to show, brought about without waiting: a call waits for the reply to the last
/// one for its CRTC, unless other tables are known to have come between them, and of tables that have to wait only the
/// newest are kept. What a CRTC is known to show is not written again, but looked at, since nothing tells of another
/// program's tables.
///
/// A call that is refused has the CRTCs read again and is repeated once; after that, with the next show().
class MutterCrtcs
{
public:
    /// `bus` outlives this.
    explicit MutterCrtcs(sd_bus *bus) : m_bus(bus) {}
    MutterCrtcs(const MutterCrtcs &) = delete;
    MutterCrtcs &operator=(const MutterCrtcs &) = delete;

    /// Has the CRTCs read again, and all tables written again after that.
    void reload();
    /// Another program has written tables, or may have: what is to be shown is written again.
    void forgetShown();
    void show(std::span<const DisplayIdentifier> crtcs, const GammaTables &tables);
    /// Nothing is to be shown any longer. A call that is under way is carried out.
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
        std::optional<std::uint16_t> size{}; ///< of its tables, once it has been read
        std::optional<GammaTables> wanted{};
        std::optional<GammaRamp> sent{};  ///< by the call under way
        std::optional<GammaRamp> shown{}; ///< nothing where that is unknown
        int foreignTables = 0;            ///< seen in a row
        bool mustBeLookedAt = false;
        SdBusSlot call{}; ///< under way
    };

    /// Mutter itself writes late once or twice after a change.
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
