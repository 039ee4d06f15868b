#pragma once

#include "adapters/linux/displays/wlroots/ColourMatrices.h"
#include "adapters/linux/displays/wlroots/GammaControl.h"
#include "adapters/linux/displays/wlroots/WaylandConnection.h"

#include <chrono>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ambertide {

/// The outputs of one Wayland compositor, tinted by zwlr_gamma_control_manager_v1 over one connection. A display is
/// identified by the global name of its output. One thread at a time.
///
/// An output's control is asked for with its first tables, and then kept. When it is refused, one line says so, and it
/// is asked for again after a while; on Hyprland, which refuses it for an output with a colour profile, a colour matrix
/// stands in for the tables, unless another program sets matrices. Once the connection is lost, all calls do nothing.
class WlrootsCompositor
{
public:
    using Clock = std::chrono::steady_clock;
    enum class State {
        usable,
        unreachable,         ///< no compositor answers at that name in time, or the connection has broken
        withoutGammaControl, ///< the compositor has no such protocol
    };

    /// Connects and waits for the list of outputs, for half a minute at most. `display` is the name or path of the
    /// socket.
    explicit WlrootsCompositor(const std::string &display);
    WlrootsCompositor(const WlrootsCompositor &) = delete;
    WlrootsCompositor &operator=(const WlrootsCompositor &) = delete;

    State state() const;
    /// Whether outputs may stay tinted when the connection that tinted them ends.
    bool keepsTints() const { return m_isHyprland; }
    int descriptor() const { return m_connection.descriptor(); }
    /// When takeEvents() has to be called even if the descriptor is not readable by then.
    std::optional<Clock::time_point> due() const;

    /// Handles what the compositor has sent, without waiting. True when show() should be called again: outputs have
    /// come or become ready, or refused controls may be asked for again.
    bool takeEvents();
    /// The outputs, except those that are known to have no tables and cannot be given a matrix.
    std::vector<DisplayIdentifier> displays() const;
    /// Whether there are outputs, and none of them can be tinted now.
    bool refusesAll() const;
    /// Whether show() can do without asking for a control, because it would write to each of them or leave it out.
    bool hasAskedFor(std::span<const DisplayIdentifier> displays) const;
    /// Asks for the missing controls and waits that long at most for the answers. restore() acts on those that were
    /// granted by then.
    void takeControls(std::chrono::milliseconds patience);
    /// Gives the tables to those of the outputs that are there and ready, unless they have them already. Never waits:
    /// false when the compositor takes no more for now, and the call has to be repeated.
    bool show(std::span<const DisplayIdentifier> displays, const GammaTables &tables);
    /// Waits for the compositor to take what show() could not send; false when it does not in that time.
    bool flush(std::chrono::milliseconds patience) { return m_connection.flush(patience); }
    /// Makes the next show() write its tables even where they are the same as before.
    void forgetTables();
    /// Shows the identity, gives up all controls, and waits until the compositor has done it. False when it has not
    /// confirmed that in time.
    bool restore(std::chrono::milliseconds patience);

private:
    struct Output
    {
        WlrootsCompositor *owner = nullptr;
        WaylandObject<wl_output> object{};
        std::optional<GammaControl> control{};
        GammaControl::State seen = GammaControl::State::awaitingSize; ///< the control's state that has been acted on
        std::optional<Clock::time_point> nextAttempt{};               ///< for the control, after it was refused
        bool hasTables = true;
        std::optional<ColourMatrices::Factors> matrix{}; ///< in place of tables, or the identity beside them
    };
    struct Global
    {
        std::uint32_t name;
        std::uint32_t version;
    };

    static void noteSetUp(Output &output);
    static void noteGlobal(void *self, wl_registry *, std::uint32_t name, const char *interface, std::uint32_t version);
    static void noteRemoval(void *self, wl_registry *, std::uint32_t name);
    void addGlobal(Global global, std::string_view interface);
    void settle(Output &output);
    void giveUpBlockedMatrices();
    bool canUseMatrices() const;
    void sayRefusal();
    bool mustAsk(const Output &output) const;
    void askForControl(Output &output);
    void show(Output &output, const GammaTables &tables);

    WaylandConnection m_connection;
    WaylandObject<wl_registry> m_registry;
    WaylandObject<zwlr_gamma_control_manager_v1> m_manager;
    std::optional<Global> m_matrixGlobal;
    std::optional<ColourMatrices> m_matrices;        ///< while they stand in
    std::optional<Clock::time_point> m_nextMatrices; ///< when they may be tried again, after another program had them
    std::map<DisplayIdentifier, Output> m_outputs;
    bool m_hasAnswered = false;
    bool m_isHyprland = false;
    bool m_hasNews = false; ///< since the last takeEvents()
    bool m_isRefusalSaid = false;
    bool m_isBlockSaid = false;
};

} // namespace ambertide
