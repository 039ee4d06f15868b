#pragma once

#include "adapters/linux/displays/shared/GammaRamp.h"
#include "adapters/linux/displays/wlroots/WaylandConnection.h"

#include <optional>

namespace ambertide {

/// The control of one output's gamma tables (zwlr_gamma_control_v1), which only one program can have at a time. Most
/// compositors put their own tables back when it is given up. One thread at a time.
class GammaControl
{
public:
    enum class State {
        awaitingSize, ///< nothing can be written yet
        usable,
        tableless, ///< the output has no tables, or reports an impossible size
        refused,   ///< another program has the control, or the compositor has withdrawn it
    };

    /// Asks the compositor for the control. Both arguments must outlive it.
    GammaControl(zwlr_gamma_control_manager_v1 *manager, wl_output *output);
    GammaControl(const GammaControl &) = delete;
    GammaControl &operator=(const GammaControl &) = delete;

    State state() const { return m_state; }

    /// Queues the tables, unless these are what was queued last. Does nothing unless usable.
    void show(const GammaTables &tables);
    void showIdentity();
    /// Makes the next show() queue its tables even if they were queued last.
    void forget() { m_shown.reset(); }

private:
    void show(const GammaRamp &ramp);
    static void noteSize(void *self, zwlr_gamma_control_v1 *, std::uint32_t size);
    static void noteFailure(void *self, zwlr_gamma_control_v1 *);

    WaylandObject<zwlr_gamma_control_v1> m_control;
    State m_state = State::awaitingSize;
    std::uint16_t m_size = 0;
    std::optional<GammaRamp> m_shown; ///< what the compositor was given last
};

} // namespace ambertide
