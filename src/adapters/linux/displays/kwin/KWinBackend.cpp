#include "adapters/linux/displays/kwin/KWinBackend.h"

#include "adapters/linux/displays/kwin/NightLightTemperature.h"
#include "base/Console.h"

#include <algorithm>
#include <cstdlib>

namespace ambertide {

namespace {

using namespace std::chrono_literals;

constexpr auto betweenRequests = 1s;
/// KWin goes in steps of 50 K, at intervals computed for whole steps: a change of 99 K takes two intervals of 2 s.
constexpr auto longestRamp = 4500ms;
constexpr int detour = 150; ///< kelvin; on this way KWin makes its first step within a second

bool isIgnored(int from, int to) { return from != to && std::abs(to - from) <= largestIgnoredChange; }

} // namespace

std::string KWinBackend::refusal()
{
    NightLightService service;
    auto state = service.state();
    for (int retries = 5; !state && retries > 0; --retries) // a session that is still starting may be slow
        state = service.state();
    if (!state)
        return "KWin's Night Light is not on the session bus";
    return state->isAvailable ? "" : "KWin's Night Light is not available for these displays";
}

KWinBackend::KWinBackend(const std::filesystem::path &guardian)
    : m_guardian(guardian, {"kwin", NightLightLoan::filesOfUser().state}), m_loan(NightLightLoan::filesOfUser())
{
    giveBack();
}

bool KWinBackend::write(std::span<const DisplayIdentifier>, const GammaTables &tables, Wait wait)
{
    if (wait == Wait::Never)
        return false;
    m_wanted = nearestNightLightTemperature(tables);
    m_mayDetour = true;
    if (Clock::now() >= m_earliestRequest)
        request(*m_wanted);
    return true;
}

void KWinBackend::restore()
{
    m_wanted.reset();
    if (m_loan.isActive())
        giveBack();
}

std::optional<DisplayBackend::Clock::time_point> KWinBackend::due() const
{
    if (m_service.hasMore())
        return Clock::now();
    return m_wanted ? m_earliestRequest : m_arrival;
}

bool KWinBackend::process()
{
    const auto changes = m_service.process();
    if (changes.isInhibited && m_loan.isActive())
        noteInhibition(*changes.isInhibited);
    if (changes.settings && m_loan.isActive() && !m_loan.isUntouched())
        giveBack();
    const auto now = Clock::now();
    if (m_wanted && now >= m_earliestRequest)
        request(*m_wanted);
    if (m_arrival && now >= *m_arrival)
        checkArrival();
    return false;
}

void KWinBackend::request(int temperature)
{
    const int next = stepTowards(temperature);
    if (next == temperature)
        m_wanted.reset();
    if (next == m_requested && m_loan.isActive() && m_loan.isUntouched())
        return;
    m_guardian.guard(1);
    if (!m_loan.borrow(next)) {
        m_refusal = {TintRefusal::Reason::Displays, "Displays cannot be tinted by KWin: " + m_loan.failure() + '.'};
        console::print(m_refusal->details);
        m_wanted.reset();
        if (!m_loan.isActive())
            m_guardian.dismiss();
        return;
    }
    m_requested = next;
    m_service.announceChange();
    const auto now = Clock::now();
    m_earliestRequest = now + betweenRequests;
    m_arrival = now + longestRamp;
}

/// The temperature to request now: this one, or one further away if KWin would ignore the change to this one.
int KWinBackend::stepTowards(int temperature)
{
    const auto state = m_service.state();
    noteInhibition(state && state->isInhibited);
    if (!state || state->isInhibited || !m_mayDetour || !isIgnored(state->temperature, temperature))
        return temperature;
    m_mayDetour = false;
    const int away = temperature > state->temperature ? -detour : detour;
    return std::clamp(state->temperature + away, warmestNightLight, neutralNightLight);
}

/// A request that reaches KWin while its ramp happens to be near the new target only ends that ramp: makes it once
/// more.
void KWinBackend::checkArrival()
{
    m_arrival.reset();
    const auto state = m_service.state();
    if (state && m_mayDetour && m_loan.isActive() && isIgnored(state->temperature, m_requested))
        request(m_wanted.emplace(m_requested));
}

void KWinBackend::giveBack()
{
    const NightLightAccess kwin{.announce = [this] { m_service.announceChange(); },
                                .state = [this] { return m_service.state(); }};
    switch (giveNightLightBack(m_loan, 0ms, kwin)) {
    case NightLightLoan::End::nothingBorrowed:
    case NightLightLoan::End::givenBack:
        break;
    case NightLightLoan::End::changedByOthers:
        console::print("Somebody has changed the settings of KWin's Night Light: they stay as they are now.");
        break;
    case NightLightLoan::End::failed:
        console::print("KWin's Night Light keeps the tint: " + m_loan.failure() + ".");
        return;
    }
    forget();
}

void KWinBackend::forget()
{
    m_wanted.reset();
    m_arrival.reset();
    m_refusal.reset();
    m_guardian.dismiss();
    m_service.disconnect();
}

void KWinBackend::noteInhibition(bool isInhibited)
{
    if (!isInhibited)
        return m_refusal.reset();
    m_wanted.reset();
    if (m_refusal && m_refusal->reason == TintRefusal::Reason::Suspended)
        return;
    m_refusal = {TintRefusal::Reason::Suspended,
                 "KWin's Night Light is suspended: displays are tinted once it is resumed."};
    console::print(m_refusal->details);
}

} // namespace ambertide
