#include "adapters/linux/displays/randr/RandrBackend.h"

#include "base/Console.h"

#include <algorithm>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;
using State = RandrConnection::State;

namespace {

/// A restore has half a second in all.
constexpr auto patienceForCalibrations = 200ms;
/// After colord has not answered in time.
constexpr auto betweenCalibrations = 10s;

} // namespace

RandrBackend::RandrBackend(std::string display, std::filesystem::path guardian)
    : m_display(std::move(display)), m_guardian(std::move(guardian), {"randr", m_display})
{
    if (m_calibrations.descriptor() >= 0)
        m_sources.add(m_calibrations.descriptor());
    connect();
}

bool RandrBackend::write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait)
{
    if (wait == Wait::Never && (!m_claim || m_server->hasLostSelection() || !m_server->isReadyToWrite()))
        return false;
    if (wait == Wait::Allowed) {
        if (!connect())
            return true;
        readDisplays();
        if (!ownsDisplays())
            return true;
    }
    std::vector<GammaRamp> ramps; // one for each size that occurs
    for (const auto display : displays) {
        const auto *const crtc = m_server->find(display);
        if (!crtc || crtc->tableSize == 0)
            continue;
        // The guardian has to know before the first tint can reach the server.
        m_guardian.guard(m_claim->window());
        m_isRestored = false;
        if (const auto curve = m_calibrations.curves().find(crtc->output); curve != m_calibrations.curves().end()) {
            m_server->setGamma(crtc->identifier, GammaRamp(calibrated(tables, curve->second), crtc->tableSize));
            continue;
        }
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
    if (!ownsDisplays()) {
        m_guardian.dismiss();
        return;
    }
    if (m_calibrationsDue)
        readCalibrations();
    m_server->restoreEverywhere(m_calibrations.curves());
    m_isRestored = true;
    if (m_server->synchronise())
        m_guardian.dismiss();
    readDisplays();
    m_hasChanges = m_server->hasChanges();
}

/// Why nothing can be tinted through this server, in one line; empty when something can.
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

int RandrBackend::descriptor() const { return m_server->state() == State::usable ? m_sources.descriptor() : -1; }

bool RandrBackend::process()
{
    m_hasChanges = false;
    if (m_server->state() != State::usable)
        return false;
    bool mustWrite = m_server->takeEvents();
    if (mustWrite)
        readDisplays();
    bool hasCalibrations = !m_calibrations.curves().empty();
    if (m_calibrations.process() || (m_calibrationsDue && *m_calibrationsDue <= Clock::now())) {
        mustWrite = readCalibrations() || mustWrite;
        hasCalibrations = hasCalibrations || !m_calibrations.curves().empty();
    }
    if (mustWrite && m_isRestored && hasCalibrations && !m_server->hasLostSelection()) {
        m_server->restoreEverywhere(m_calibrations.curves());
        m_server->flush();
    }
    m_hasChanges = m_server->hasChanges();
    return mustWrite;
}

std::optional<DisplayBackend::Clock::time_point> RandrBackend::due() const
{
    if (m_server->state() != State::usable)
        return std::nullopt;
    return m_hasChanges ? Clock::time_point() : m_calibrationsDue;
}

void RandrBackend::readDisplays()
{
    m_displays.clear();
    std::vector<std::string> outputs;
    for (const auto &crtc : m_server->crtcs()) {
        if (crtc.isActive)
            m_displays.push_back(crtc.identifier);
        if (!crtc.output.empty())
            outputs.push_back(crtc.output);
    }
    if (outputs != m_outputs) {
        m_outputs = std::move(outputs);
        m_calibrationsDue = Clock::time_point();
    }
}

/// Waits for colord, not for long. True when curves have changed.
bool RandrBackend::readCalibrations()
{
    const bool haveChanged = m_calibrations.read(m_outputs, Clock::now() + patienceForCalibrations);
    m_calibrationsDue = std::nullopt;
    if (m_calibrations.hasChanged())
        m_calibrationsDue = Clock::time_point();
    else if (!m_calibrations.isComplete())
        m_calibrationsDue = Clock::now() + betweenCalibrations;
    return haveChanged;
}

bool RandrBackend::connect()
{
    if (!m_server || m_server->state() == State::unreachable) {
        m_claim.reset();
        m_server.emplace(m_display);
        m_displays.clear();
        if (m_server->state() == State::usable) {
            m_sources.add(xcb_get_file_descriptor(m_server->xcb()));
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

/// Whether the displays are this copy's to tint. Claims them, unless another copy that still runs has claimed them
/// since this one did. Waits for the server after that, so that another copy's guardian finds the claim in place when
/// it looks.
bool RandrBackend::ownsDisplays()
{
    if (m_claim && !m_server->hasLostSelection())
        return true;
    if (!m_claim) {
        m_claim.emplace(m_server->xcb(), m_server->root(), m_selection);
    } else {
        const auto newest = TintClaim::newest(m_server->xcb(), m_selection);
        const bool isAnothers = newest != XCB_NONE && newest != m_claim->window();
        if (isAnothers != std::exchange(m_hasYielded, isAnothers)) {
            console::print("The displays of the X server " + m_display +
                           (isAnothers ? " are another Ambertide's now; this one leaves them alone."
                                       : " are this Ambertide's again."));
        }
        if (isAnothers) {
            m_isRestored = false;
            return false;
        }
        m_claim->renew();
    }
    m_server->settleLostSelection();
    m_server->synchronise();
    return true;
}

} // namespace ambertide
