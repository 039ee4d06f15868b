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
        Desktop,  ///< it lets no program tint displays
        Displays, ///< none of them has tables that can be set
        Suspended ///< it is what tints them, and has suspended that
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

    /// Gives each of the displays, in this order, the three tables. A display that comes, wakes or changes later is
    /// given the newest tables at once.
    virtual void setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables) = 0;

    /// Gives every display, whether it shows a picture or not, the system's own colours.
    virtual void restoreSystemColours() = 0;

    /// A ramp begins now that ends with the tables `target`, or with the system's own colours where there are none. For
    /// systems that make ramps by themselves.
    virtual void beginRamp(const std::optional<GammaTables> & /*target*/) {}

    /// Nothing where displays can be tinted, and until that is known.
    virtual std::optional<TintRefusal> refusal() { return std::nullopt; }

    /// False while a tint would stay if this process were killed.
    virtual bool isGuarded() { return true; }
};

} // namespace ambertide
