#include "adapters/linux/displays/mutter/MutterRestore.h"

#include "adapters/linux/bus/CallBatch.h"
#include "adapters/linux/displays/mutter/DisplayConfig.h"
#include "adapters/linux/displays/mutter/NightLight.h"
#include "adapters/linux/displays/profiles/ColourProfiles.h"

#include <algorithm>

namespace ambertide {

namespace {

/// One in this many parts of the remaining time is kept for the calls to mutter, should other services not answer.
constexpr auto share = 3;

GammaTables tablesOf(const ColourProfile &profile, const std::array<double, 3> &whitePoint)
{
    GammaTables tables;
    for (std::size_t i = 0; i < GammaTables::size; ++i)
        tables.red[i] = tables.green[i] = tables.blue[i] = static_cast<float>(i) / (GammaTables::size - 1);
    tables = profile.calibration.value_or(tables);
    if (profile.knowledge == ColourProfile::Knowledge::none)
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

Outcome restoreOnce(sd_bus *sessionBus, sd_bus *systemBus, SdBusDeadline deadline, IfUnknown unknown)
{
    using display_config::Gamma;
    std::vector<SdBusMessage> calls;
    calls.push_back(night_light::askForTemperature(sessionBus));
    CallBatch temperature(sessionBus, calls);
    calls[0] = display_config::getResources(sessionBus);
    CallBatch question(sessionBus, calls);
    const auto resources = display_config::readResources(question.wait(deadline)[0].get());
    if (!resources)
        return Outcome::failed;

    calls.clear();
    std::vector<std::string> connectors;
    for (const auto &crtc : resources->crtcs) {
        connectors.push_back(crtc.connector);
        calls.push_back(display_config::getCrtcGamma(sessionBus, resources->serial, crtc.identifier));
    }
    CallBatch gammas(sessionBus, calls);
    const auto now = std::chrono::steady_clock::now();
    const auto latest = deadline - std::max(deadline - now, {}) / share;
    const auto profiles = readColourProfiles(systemBus, connectors, latest);
    const auto &kelvin = temperature.wait(latest)[0];
    const bool isAllKnown =
        kelvin && std::ranges::count(profiles, ColourProfile::Knowledge::unknown, &ColourProfile::knowledge) == 0;
    if (!isAllKnown && unknown == IfUnknown::writeNothing)
        return Outcome::failed;
    const auto whitePoint = night_light::whitePoint(kelvin);
    const auto &present = gammas.wait(deadline);

    for (std::size_t i = 0; i < calls.size(); ++i) {
        const GammaRamp ramp(tablesOf(profiles[i], whitePoint),
                             display_config::tableSize(display_config::readGamma(present[i].get()).value_or(Gamma{})));
        calls[i] = display_config::setCrtcGamma(sessionBus, resources->serial, resources->crtcs[i].identifier, ramp);
    }
    auto outcome = isAllKnown ? Outcome::done : Outcome::failed;
    CallBatch writes(sessionBus, calls);
    for (const auto &reply : writes.wait(deadline)) {
        if (reply && sd_bus_message_is_method_error(reply.get(), display_config::staleError) > 0)
            return Outcome::stale;
        if (!reply)
            outcome = Outcome::failed;
    }
    return outcome;
}

} // namespace

bool restoreMutterDisplays(sd_bus *sessionBus, sd_bus *systemBus, SdBusDeadline deadline, IfUnknown unknown)
{
    auto outcome = restoreOnce(sessionBus, systemBus, deadline, unknown);
    if (outcome == Outcome::stale)
        outcome = restoreOnce(sessionBus, systemBus, deadline, unknown);
    return outcome == Outcome::done;
}

} // namespace ambertide
