#include "adapters/linux/displays/shared/GammaRamp.h"

#include <algorithm>

namespace ambertide {

namespace {

constexpr float brightest = 65535.0F;

std::uint16_t rounded(float level) { return static_cast<std::uint16_t>(level + 0.5F); }

void resample(const GammaTables::Table &table, std::uint16_t *levels, std::uint16_t size)
{
    GammaTables::Table source;
    std::ranges::transform(table, source.begin(),
                           [](float value) { return value > 0.0F ? std::min(value, 1.0F) * brightest : 0.0F; });
    if (size == GammaTables::size) {
        std::ranges::transform(source, levels, rounded);
        return;
    }
    constexpr std::size_t lastSegment = GammaTables::size - 2;
    const double scale = (GammaTables::size - 1.0) / (size - 1.0);
    for (std::uint16_t i = 0; i < size; ++i) {
        const double position = i * scale;
        const std::size_t segment = std::min(static_cast<std::size_t>(position), lastSegment);
        const auto fraction = static_cast<float>(position - static_cast<double>(segment));
        levels[i] = rounded(source[segment] + (source[segment + 1] - source[segment]) * fraction);
    }
}

} // namespace

GammaRamp::GammaRamp(const GammaTables &tables, std::uint16_t size) : GammaRamp(size)
{
    resample(tables.red, m_levels.data(), size);
    resample(tables.green, m_levels.data() + size, size);
    resample(tables.blue, m_levels.data() + 2 * std::size_t{size}, size);
}

GammaRamp GammaRamp::identity(std::uint16_t size)
{
    GammaRamp ramp(size);
    const std::uint32_t last = size - 1U;
    for (std::uint32_t i = 0; i <= last; ++i)
        ramp.m_levels[i] = static_cast<std::uint16_t>((i * 65535U + last / 2) / last);
    std::copy_n(ramp.m_levels.begin(), size, ramp.m_levels.begin() + size);
    std::copy_n(ramp.m_levels.begin(), size, ramp.m_levels.begin() + 2 * std::ptrdiff_t{size});
    return ramp;
}

} // namespace ambertide
