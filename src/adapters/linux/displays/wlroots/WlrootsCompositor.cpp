#include "adapters/linux/displays/wlroots/WlrootsCompositor.h"

#include "base/Console.h"

#include <wayland-client.h>
#include <wlr-gamma-control-client-protocol.h>

#include <algorithm>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// A session that is starting, and draws without a graphics card, may not answer its clients for seconds.
constexpr auto patienceForGlobals = 30s;
/// Between requests for a control that was refused.
constexpr auto betweenAttempts = 30s;
/// Far more than anybody has, so that a broken compositor cannot make us grow.
constexpr std::size_t mostOutputs = 64;

/// The identity as far as a colour matrix is concerned, which follows only the last entries.
constexpr GammaTables identity()
{
    GammaTables tables{};
    tables.red.back() = tables.green.back() = tables.blue.back() = 1;
    return tables;
}

} // namespace

WlrootsCompositor::WlrootsCompositor(const std::string &display) : m_connection(display)
{
    static constexpr wl_registry_listener listener{noteGlobal, noteRemoval};
    if (!m_connection.isUsable())
        return;
    m_registry.reset(wl_display_get_registry(m_connection.display()));
    if (m_registry && wl_registry_add_listener(m_registry.get(), &listener, this) == 0)
        m_hasAnswered = m_connection.synchronise(patienceForGlobals);
}

WlrootsCompositor::State WlrootsCompositor::state() const
{
    if (!m_hasAnswered || !m_connection.isUsable())
        return State::unreachable;
    return m_manager ? State::usable : State::withoutGammaControl;
}

void WlrootsCompositor::noteGlobal(void *self, wl_registry *, std::uint32_t name, const char *interface,
                                   std::uint32_t version)
{
    static_cast<WlrootsCompositor *>(self)->addGlobal({name, version}, interface);
}

void WlrootsCompositor::noteRemoval(void *self, wl_registry *, std::uint32_t name)
{
    static_cast<WlrootsCompositor *>(self)->m_outputs.erase(name);
}

/// The output has been set up anew. Hyprland may have given it the tables of its colour profile.
void WlrootsCompositor::noteSetUp(Output &output)
{
    if (output.control) {
        output.control->forget();
        output.owner->m_hasNews = true;
    }
}

void WlrootsCompositor::addGlobal(Global global, std::string_view interface)
{
    static constexpr wl_output_listener outputListener{
        .geometry = [](void *, wl_output *, int, int, int, int, int, const char *, const char *, int) {},
        .mode = [](void *output, wl_output *, std::uint32_t, int, int,
                   int) { noteSetUp(*static_cast<Output *>(output)); },
        // Not sent to objects of version 1, but a compositor can be wrong.
        .done = [](void *, wl_output *) {},
        .scale = [](void *, wl_output *, int) {},
        .name = [](void *, wl_output *, const char *) {},
        .description = [](void *, wl_output *, const char *) {}};
    m_isHyprland = m_isHyprland || interface.starts_with("hyprland_");
    const auto bind = [this, &global](const wl_interface &type) {
        return wl_registry_bind(m_registry.get(), global.name, &type, 1);
    };
    if (interface == wl_output_interface.name && m_outputs.size() < mostOutputs) {
        WaylandObject<wl_output> object(static_cast<wl_output *>(bind(wl_output_interface)));
        if (!object)
            return;
        m_outputs.erase(global.name);
        auto &output = m_outputs[global.name];
        output.owner = this;
        output.object = std::move(object);
        wl_output_add_listener(output.object.get(), &outputListener, &output);
        m_hasNews = true;
    } else if (interface == zwlr_gamma_control_manager_v1_interface.name && !m_manager) {
        m_manager.reset(static_cast<zwlr_gamma_control_manager_v1 *>(bind(zwlr_gamma_control_manager_v1_interface)));
    } else if (interface == "hyprland_ctm_control_manager_v1") {
        m_matrixGlobal = global;
    }
}

bool WlrootsCompositor::takeEvents()
{
    m_connection.takeEvents();
    for (auto &[name, output] : m_outputs)
        settle(output);
    giveUpBlockedMatrices();
    const auto attempt = due();
    if (attempt && *attempt <= Clock::now())
        m_hasNews = true;
    m_connection.flush(); // sends the requests that bind new outputs
    return std::exchange(m_hasNews, false);
}

/// Acts on what the compositor has said about a control.
void WlrootsCompositor::settle(Output &output)
{
    if (!output.control || output.control->state() == output.seen)
        return;
    const bool wasUsable = output.seen == GammaControl::State::usable;
    output.seen = output.control->state();
    m_hasNews = true;
    switch (output.seen) {
    case GammaControl::State::usable:
        if (std::exchange(output.nextAttempt, {}))
            m_isRefusalSaid = false;
        return;
    case GammaControl::State::tableless:
        output.hasTables = false;
        output.nextAttempt.reset();
        break;
    case GammaControl::State::refused:
        output.nextAttempt = Clock::now() + betweenAttempts;
        // A control that is withdrawn usually belongs to an output that is about to go; the next attempt will tell.
        // Hyprland also withdraws one at the first tables for an output with a colour profile.
        if (!wasUsable || m_matrixGlobal)
            sayRefusal();
        break;
    case GammaControl::State::awaitingSize:
        return;
    }
    output.control.reset();
}

void WlrootsCompositor::giveUpBlockedMatrices()
{
    if (!m_matrices || !m_matrices->isBlocked())
        return;
    m_matrices.reset();
    m_nextMatrices = Clock::now() + betweenAttempts;
    for (auto &[name, output] : m_outputs) {
        if (std::exchange(output.matrix, {}) && !output.control)
            output.nextAttempt = m_nextMatrices;
    }
    if (!std::exchange(m_isBlockSaid, true))
        console::print("Another program sets the displays' color matrices, so that they cannot be tinted.");
}

bool WlrootsCompositor::canUseMatrices() const
{
    return m_matrixGlobal && (!m_nextMatrices || *m_nextMatrices <= Clock::now());
}

void WlrootsCompositor::sayRefusal()
{
    if (std::exchange(m_isRefusalSaid, true))
        return;
    console::print(m_matrixGlobal ? "The compositor withholds a display's gamma tables (for the sake of its color "
                                    "profile, or of another program): a color matrix stands in."
                                  : "A display cannot be tinted now: another program has its gamma tables, or it has "
                                    "none. It is tried again every 30 s.");
}

std::optional<WlrootsCompositor::Clock::time_point> WlrootsCompositor::due() const
{
    std::optional<Clock::time_point> due;
    for (const auto &[name, output] : m_outputs) {
        if (output.nextAttempt && !output.control && !output.matrix)
            due = std::min(output.nextAttempt, due ? due : output.nextAttempt);
    }
    return due;
}

std::vector<DisplayIdentifier> WlrootsCompositor::displays() const
{
    std::vector<DisplayIdentifier> displays;
    for (const auto &[name, output] : m_outputs) {
        if (output.hasTables || m_matrixGlobal)
            displays.push_back(name);
    }
    return displays;
}

bool WlrootsCompositor::refusesAll() const
{
    return !m_outputs.empty() && !canUseMatrices() && std::ranges::all_of(m_outputs, [](const auto &named) {
        return !named.second.hasTables || named.second.nextAttempt;
    });
}

bool WlrootsCompositor::mustAsk(const Output &output) const
{
    return !output.control && output.hasTables && !output.matrix &&
           (!output.nextAttempt || *output.nextAttempt <= Clock::now());
}

bool WlrootsCompositor::hasAskedFor(std::span<const DisplayIdentifier> displays) const
{
    return std::ranges::none_of(displays, [this](auto display) {
        const auto output = m_outputs.find(display);
        return output != m_outputs.end() && mustAsk(output->second);
    });
}

void WlrootsCompositor::takeControls(std::chrono::milliseconds patience)
{
    if (state() != State::usable)
        return;
    for (auto &[name, output] : m_outputs)
        askForControl(output);
    m_connection.synchronise(patience);
    takeEvents();
}

bool WlrootsCompositor::show(std::span<const DisplayIdentifier> displays, const GammaTables &tables)
{
    if (state() != State::usable)
        return true;
    for (const auto display : displays) {
        const auto output = m_outputs.find(display);
        if (output == m_outputs.end())
            continue;
        if (!m_connection.flush())
            return false;
        show(output->second, tables);
    }
    if (m_matrices)
        m_matrices->commit();
    return m_connection.flush();
}

void WlrootsCompositor::askForControl(Output &output)
{
    if (!mustAsk(output))
        return;
    output.seen = GammaControl::State::awaitingSize;
    output.control.emplace(m_manager.get(), output.object.get());
}

void WlrootsCompositor::show(Output &output, const GammaTables &tables)
{
    askForControl(output);
    if (output.control) {
        // Hyprland keeps matrices by connector, so there may be one of the display that was here before.
        if (m_matrices)
            m_matrices->show(output.object.get(), identity(), output.matrix);
        output.control->show(tables);
    } else if (canUseMatrices()) {
        if (!m_matrices)
            m_matrices.emplace(m_registry.get(), m_matrixGlobal->name, m_matrixGlobal->version);
        m_matrices->show(output.object.get(), tables, output.matrix);
    }
}

void WlrootsCompositor::forgetTables()
{
    for (auto &[name, output] : m_outputs) {
        if (output.matrix)
            output.matrix.emplace(); // there is one, but what it is on the screen is unknown
        if (output.control)
            output.control->forget();
    }
}

bool WlrootsCompositor::restore(std::chrono::milliseconds patience)
{
    if (state() != State::usable)
        return false;
    // Without the identity, Hyprland would show the tint until something else on the display changes.
    for (auto &[name, output] : m_outputs) {
        if (!m_connection.flush(patience))
            break;
        if (output.control)
            output.control->showIdentity();
        if (m_matrices && output.matrix)
            m_matrices->show(output.object.get(), identity(), output.matrix);
    }
    if (m_matrices)
        m_matrices->commit();
    for (auto &[name, output] : m_outputs) {
        output.control.reset();
        output.nextAttempt.reset();
        output.matrix.reset();
    }
    m_matrices.reset();
    return m_connection.synchronise(patience);
}

} // namespace ambertide
