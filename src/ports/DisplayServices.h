#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ambertide {

/// Names one active display for as long as the display server keeps it.
using DisplayIdentifier = std::uint32_t;

/// Three transfer tables. Entry i is the output level, 0 to 1, for the input level i/255.
struct GammaTables
{
    static constexpr std::size_t size = 256;
    using Table = std::array<float, size>;

    Table red;
    Table green;
    Table blue;

    bool operator==(const GammaTables &) const = default;
};

/// Why no display can be tinted.
struct TintRefusal
{
    enum class Reason {
        Desktop,  ///< the desktop lets no program tint displays
        Displays, ///< no display has tables that can be set
        Suspended ///< it is the desktop that tints the displays, and it has suspended that
    };
    Reason reason = Reason::Desktop;
    std::string details; ///< a line in English, for logs and terminals
};

/// Port: what the colour engine asks of the display server. Safe from any thread.
///
/// Nothing here fails: displays that vanish, refuse or cannot be reached are left out, since the engine writes again
/// soon. Only restoreSystemColours() waits for the server, and not for long; all else returns at once.
class DisplayServices
{
public:
    virtual ~DisplayServices() = default;

    /// The displays that show a picture now.
    virtual std::vector<DisplayIdentifier> activeDisplays() = 0;

    /// Sets the three tables of each of these displays, in this order. A display that appears, wakes or changes later
    /// gets the newest tables at once.
    virtual void setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables) = 0;

    /// Gives every display the system's own colours, whether or not it shows a picture.
    virtual void restoreSystemColours() = 0;

    /// Announces that a ramp begins which will end with the tables `target`, or with the system's own colours if that
    /// is empty. For systems that make ramps by themselves.
    virtual void beginRamp(const std::optional<GammaTables> & /*target*/) {}

    /// Why displays cannot be tinted; nothing if they can, or while that is not known yet.
    virtual std::optional<TintRefusal> refusal() { return std::nullopt; }

    /// False while a tint would remain on the displays if this process were killed.
    virtual bool isGuarded() { return true; }
};

} // namespace ambertide
