#pragma once

#include "ports/DisplayServices.h"

#include <chrono>
#include <optional>
#include <span>

namespace ambertide {

class GuardianProcess;

/// How one kind of display server is asked to tint its displays. Used by one thread at a time, which may change from
/// call to call. Nothing here fails: what a server refuses is left out, reported in one line where the user can act on
/// it, and tried again with a later write.
class DisplayBackend
{
public:
    using Clock = std::chrono::steady_clock;
    /// Whether a call may wait for the server.
    enum class Wait { Never, Allowed };

    virtual ~DisplayBackend() = default;

    /// The displays that show a picture, as far as the server has told. Never waits.
    virtual std::span<const DisplayIdentifier> displays() const = 0;

    /// Gives those of `displays` that are still there the tables. False when that would have had to wait: the call is
    /// then repeated with Wait::Allowed.
    virtual bool write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait) = 0;

    /// Gives every display the system's own colours, and waits until the server has done it or cannot.
    virtual void restore() = 0;

    /// Why nothing can be tinted, as far as the server has told. Never waits.
    virtual std::optional<TintRefusal> tintRefusal() const { return std::nullopt; }

    /// True where the system makes its own ramps: it is given the target of a ramp at its beginning, and no steps.
    virtual bool makesOwnRamps() const { return false; }

    /// Becomes readable when the server has something to say; -1 when there is nothing to wait for.
    virtual int descriptor() const { return -1; }

    /// When process() has to be called even if the descriptor is not readable by then.
    virtual std::optional<Clock::time_point> due() const { return std::nullopt; }

    /// Handles what the server has sent, and does what is due. True when a tint has to be written again: displays came
    /// or changed, or another program wrote to them.
    virtual bool process() { return false; }

    /// Stands by to give the displays back when this process cannot; null where the server does so by itself.
    virtual GuardianProcess *guardian() { return nullptr; }
};

} // namespace ambertide
