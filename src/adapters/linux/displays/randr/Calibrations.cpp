#include "adapters/linux/displays/randr/Calibrations.h"

#include "base/Console.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ambertide {

namespace {

/// Handled in one go; limited, so that a flood holds nothing else up.
constexpr int mostMessages = 200;

void calibrate(GammaTables::Table &table, const GammaTables::Table &curve)
{
    constexpr float last = GammaTables::size - 1;
    for (auto &level : table) {
        const float position = std::clamp(level, 0.0F, 1.0F) * last;
        const auto segment = std::min(static_cast<std::size_t>(position), GammaTables::size - 2);
        level = std::lerp(curve[segment], curve[segment + 1], position - static_cast<float>(segment));
    }
}

} // namespace

Calibrations::Calibrations() : m_bus(openSdBus(SdBusKind::system))
{
    const auto changed = [](sd_bus_message *, void *context, sd_bus_error *) {
        static_cast<Calibrations *>(context)->m_hasChanged = true;
        return 0;
    };
    if (m_bus)
        m_watch = watchColourProfiles(m_bus.get(), changed, this);
}

int Calibrations::descriptor() const { return m_bus ? sd_bus_get_fd(m_bus.get()) : -1; }

bool Calibrations::process()
{
    int handled = 1;
    for (int i = 0; m_bus && i < mostMessages && handled > 0; ++i)
        handled = sd_bus_process(m_bus.get(), nullptr);
    if (handled < 0) {
        m_watch = {};
        m_bus.reset();
    }
    return std::exchange(m_hasChanged, false);
}

bool Calibrations::read(const std::vector<std::string> &outputs, SdBusDeadline deadline)
{
    CalibrationCurves curves;
    const auto profiles = readColourProfiles(m_bus.get(), outputs, deadline);
    m_isComplete = std::ranges::count(profiles, ColourProfile::Knowledge::unknown, &ColourProfile::knowledge) == 0;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (profiles[i].calibration)
            curves.emplace(outputs[i], *profiles[i].calibration);
        else if (const auto known = m_curves.find(outputs[i]);
                 known != m_curves.end() && profiles[i].knowledge == ColourProfile::Knowledge::unknown)
            curves.insert(*known);
        const auto &damaged = profiles[i].damagedFile;
        if (!damaged.empty() && damaged != std::exchange(m_saidDamaged, damaged))
            console::print("The colour profile " + damaged + " of " + outputs[i] +
                           " cannot be read: the display is taken for one without a calibration.");
    }
    return curves != std::exchange(m_curves, curves);
}

GammaTables calibrated(const GammaTables &tables, const GammaTables &curve)
{
    auto result = tables;
    calibrate(result.red, curve.red);
    calibrate(result.green, curve.green);
    calibrate(result.blue, curve.blue);
    return result;
}

} // namespace ambertide
