#include "adapters/linux/displays/wlroots/WlrootsBackend.h"

#include "adapters/linux/displays/shared/timeAsleep.h"
#include "base/Console.h"

#include <algorithm>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;
using State = WlrootsCompositor::State;

namespace {

constexpr auto patience = 400ms;
constexpr std::chrono::milliseconds shortestPause = 250ms;
constexpr std::chrono::milliseconds longestPause = 8s;
/// What the guardian is told. There is only one claim: the connection.
constexpr GuardianMessage tinting = 1;

} // namespace

std::string WlrootsBackend::refusal(const std::string &display)
{
    switch (WlrootsCompositor(display).state()) {
    case State::usable:
        break;
    case State::unreachable:
        return "the compositor " + display + " cannot be reached";
    case State::withoutGammaControl:
        return "the compositor offers no gamma control";
    }
    return {};
}

WlrootsBackend::WlrootsBackend(std::string display, std::filesystem::path guardian)
    : m_display(std::move(display)), m_guardian(std::move(guardian), {"wlroots", m_display}), m_pause(shortestPause)
{
    connect();
}

bool WlrootsBackend::connect()
{
    m_compositor.emplace(m_display);
    m_changed = Clock::now();
    if (m_compositor->state() != State::usable) {
        lose();
        return false;
    }
    m_displays = m_compositor->displays();
    if (std::exchange(m_isLossSaid, false))
        console::print("The compositor " + m_display + " can be reached again.");
    return true;
}

void WlrootsBackend::lose()
{
    if (!std::exchange(m_isLossSaid, true))
        console::print("The connection to the compositor " + m_display + " is lost; trying again.");
    m_compositor.reset();
    m_displays.clear();
    const auto now = Clock::now();
    m_pause = now - m_changed > longestPause ? shortestPause : std::min(2 * m_pause, longestPause);
    m_changed = now + m_pause;
}

bool WlrootsBackend::write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait)
{
    if (!m_compositor)
        return true;
    if (wait == Wait::Never && !m_compositor->hasAskedFor(displays))
        return false;
    if (const auto slept = timeAsleep(); std::exchange(m_slept, slept) + 500ms < slept)
        m_compositor->forgetTables();
    if (m_compositor->keepsTints())
        m_guardian.guard(tinting);
    while (!m_compositor->show(displays, tables)) {
        if (wait == Wait::Never)
            return false;
        if (!m_compositor->flush(patience))
            break;
    }
    return true;
}

void WlrootsBackend::restore()
{
    if (m_compositor && m_compositor->restore(patience))
        m_guardian.dismiss();
}

std::optional<DisplayBackend::Clock::time_point> WlrootsBackend::due() const
{
    return m_compositor ? m_compositor->due() : m_changed;
}

std::optional<TintRefusal> WlrootsBackend::tintRefusal() const
{
    if (!m_compositor || !m_compositor->refusesAll())
        return std::nullopt;
    return TintRefusal{
        TintRefusal::Reason::Displays,
        "The compositor gives the gamma tables of no display: it has none, or another program has them."};
}

bool WlrootsBackend::process()
{
    if (!m_compositor)
        return m_changed <= Clock::now() && connect();
    const bool mustWriteAgain = m_compositor->takeEvents();
    m_displays = m_compositor->displays();
    if (m_compositor->state() == State::usable)
        return mustWriteAgain;
    lose();
    return false;
}

} // namespace ambertide
