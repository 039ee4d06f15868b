#include "adapters/linux/displays/mutter/MutterRestore.h"

#include "adapters/linux/displays/mutter/CallBatch.h"
#include "adapters/linux/displays/mutter/ColourProfiles.h"
#include "adapters/linux/displays/mutter/DisplayConfig.h"
#include "adapters/linux/displays/mutter/NightLight.h"

#include <algorithm>

namespace ambertide {

namespace {

using namespace std::chrono_literals;

/// Kept for the calls to mutter when others do not answer.
constexpr auto reserve = 150ms;
constexpr auto patienceForNightLight = 100ms;

GammaTables tablesOf(const ColourProfile &profile, const std::array<double, 3> &whitePoint)
{
    GammaTables tables;
    for (std::size_t i = 0; i < GammaTables::size; ++i)
        tables.red[i] = tables.green[i] = tables.blue[i] = static_cast<float>(i) / (GammaTables::size - 1);
    tables = profile.calibration.value_or(tables);
    if (!profile.mayExist)
        return tables;
    std::size_t channel = 0;
    for (auto *const table : {&tables.red, &tables.green, &tables.blue}) {
        for (auto &level : *table)
            level = static_cast<float>(level * whitePoint[channel]);
        ++channel;
    }
    return tables;
}

enum class Outcome { done, stale, failed };

Outcome restoreOnce(sd_bus *bus, const std::array<double, 3> &whitePoint, SdBusDeadline deadline)
{
    const auto question = display_config::getResources(bus);
    const auto answer = question ? callUntil(bus, question.get(), deadline) : nullptr;
    const auto resources = display_config::readResources(answer.get());
    if (!resources)
        return Outcome::failed;

    std::vector<std::string> connectors;
    std::vector<SdBusMessage> calls;
    for (const auto &crtc : resources->crtcs) {
        connectors.push_back(crtc.connector);
        calls.push_back(display_config::getCrtcGamma(bus, resources->serial, crtc.identifier));
    }
    const auto gammas = callTogether(bus, calls, deadline);
    const auto profiles = readColourProfiles(connectors, deadline - reserve);

    for (std::size_t i = 0; i < calls.size(); ++i) {
        const auto gamma = display_config::readGamma(gammas[i].get()).value_or(display_config::Gamma{});
        calls[i] = display_config::setCrtcGamma(bus, resources->serial, resources->crtcs[i].identifier,
                                                {tablesOf(profiles[i], whitePoint), display_config::tableSize(gamma)});
    }
    auto outcome = Outcome::done;
    for (const auto &reply : callTogether(bus, calls, deadline)) {
        if (reply && sd_bus_message_is_method_error(reply.get(), display_config::staleError) > 0)
            return Outcome::stale;
        if (!reply)
            outcome = Outcome::failed;
    }
    return outcome;
}

} // namespace

bool restoreMutterDisplays(sd_bus *bus, SdBusDeadline deadline)
{
    const auto whitePoint =
        night_light::whitePoint(bus, std::min(deadline, std::chrono::steady_clock::now() + patienceForNightLight));
    auto outcome = restoreOnce(bus, whitePoint, deadline);
    if (outcome == Outcome::stale)
        outcome = restoreOnce(bus, whitePoint, deadline);
    return outcome == Outcome::done;
}

} // namespace ambertide
