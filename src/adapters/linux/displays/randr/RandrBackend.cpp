#include "adapters/linux/displays/randr/RandrBackend.h"

#include "base/Console.h"

#include <algorithm>
#include <utility>

namespace ambertide {

using State = RandrConnection::State;

RandrBackend::RandrBackend(std::string display, std::filesystem::path guardian)
    : m_display(std::move(display)), m_guardian(std::move(guardian), {"randr", m_display})
{
    connect();
}

bool RandrBackend::write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait)
{
    if (wait == Wait::Never && (!m_claim || !m_server->isReadyToWrite()))
        return false;
    if (wait == Wait::Allowed) {
        if (!connect())
            return true;
        readDisplays();
    }
    std::vector<GammaRamp> ramps; // one for each size that occurs
    for (const auto display : displays) {
        const auto *const crtc = m_server->find(display);
        if (!crtc || crtc->tableSize == 0)
            continue;
        if (ramps.empty())
            beginTint();
        auto ramp = std::ranges::find(ramps, crtc->tableSize, &GammaRamp::size);
        if (ramp == ramps.end())
            ramp = ramps.emplace(ramps.end(), tables, crtc->tableSize);
        m_server->setGamma(crtc->identifier, *ramp);
    }
    m_server->flush();
    m_hasChanges = m_server->hasChanges();
    return wait == Wait::Allowed || !m_hasChanges;
}

void RandrBackend::restore()
{
    if (!connect())
        return;
    m_server->setIdentityEverywhere();
    m_claim.reset();
    if (m_server->synchronise())
        m_guardian.dismiss();
    readDisplays();
    m_hasChanges = m_server->hasChanges();
}

/// Of the server as a whole: a line, empty where there is none.
std::string RandrBackend::obstacle() const
{
    switch (m_server->state()) {
    case State::withoutRandr:
        return "The X server " + m_display + " has no RandR 1.3, so displays cannot be tinted.";
    case State::xwayland:
        return "The X server " + m_display + " is Xwayland, through which displays cannot be tinted.";
    case State::usable:
    case State::unreachable:
        break;
    }
    return {};
}

std::optional<TintRefusal> RandrBackend::tintRefusal() const
{
    if (const auto line = obstacle(); !line.empty())
        return TintRefusal{TintRefusal::Reason::Desktop, line};
    const auto hasTable = [this](DisplayIdentifier display) {
        const auto *const crtc = m_server->find(display);
        return crtc && crtc->tableSize > 0;
    };
    if (m_displays.empty() || std::ranges::any_of(m_displays, hasTable))
        return std::nullopt;
    return TintRefusal{TintRefusal::Reason::Displays,
                       "None of the displays of the X server " + m_display + " has gamma tables to tint it by."};
}

int RandrBackend::descriptor() const
{
    return m_server->state() == State::usable ? xcb_get_file_descriptor(m_server->xcb()) : -1;
}

bool RandrBackend::process()
{
    m_hasChanges = false;
    if (m_server->state() != State::usable || !m_server->takeEvents())
        return false;
    readDisplays();
    m_hasChanges = m_server->hasChanges();
    return true;
}

std::optional<DisplayBackend::Clock::time_point> RandrBackend::due() const
{
    return m_hasChanges ? std::optional(Clock::time_point()) : std::nullopt;
}

void RandrBackend::readDisplays()
{
    m_displays.clear();
    for (const auto &crtc : m_server->crtcs()) {
        if (crtc.isActive)
            m_displays.push_back(crtc.identifier);
    }
}

bool RandrBackend::connect()
{
    if (!m_server || m_server->state() == State::unreachable) {
        m_claim.reset();
        m_server.emplace(m_display);
        m_displays.clear();
        if (m_server->state() == State::usable) {
            m_selection = TintClaim::selectionAtom(m_server->xcb());
            readDisplays();
        }
    }
    const auto state = m_server->state();
    report(state);
    return state == State::usable;
}

void RandrBackend::report(State state)
{
    if (state == std::exchange(m_reported, state))
        return;
    switch (state) {
    case State::usable:
        console::print("The X server " + m_display + " can be reached again.");
        break;
    case State::unreachable:
        console::print("Cannot reach the X server " + m_display + "; trying again whenever displays are to be tinted.");
        break;
    case State::withoutRandr:
    case State::xwayland:
        console::print(obstacle());
        break;
    }
}

/// The guardian has to know before the first tint can reach the server, and to find the claim there when it looks.
void RandrBackend::beginTint()
{
    if (!m_claim) {
        m_claim.emplace(m_server->xcb(), m_server->root(), m_selection);
        m_server->synchronise();
    }
    m_guardian.guard(m_claim->window());
}

} // namespace ambertide
