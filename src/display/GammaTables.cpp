#include "display/DisplayManager.h"

#include <cmath>

namespace ambertide {

namespace {

struct ChannelFactors
{
    double red;
    double green;
    double blue;
};

/// A piecewise fit of black-body colour, every coefficient divided by 255. In the upper branch green is scaled and red
/// is not; that pairing is deliberate.
ChannelFactors channelFactors(double temperature)
{
    const double hundreds = temperature / 100.0;
    if (hundreds > 66.0) {
        return {.red = std::pow(hundreds - 60.0, -0.1332047592),
                .green = std::pow(hundreds - 60.0, -0.0755148492) * 1.292936186062745,
                .blue = 1.0};
    }
    double blue = 0.0;
    if (hundreds >= 66.0)
        blue = 1.0;
    else if (hundreds > 19.0)
        blue = std::log(hundreds - 10.0) * 0.543206789110196 + -1.19625408914;
    return {.red = 1.0, .green = std::log(hundreds) * 0.3900815787690196 + -0.631841443, .blue = blue};
}

/// The input levels i/255, so that filling a table is one multiplication an entry.
constexpr GammaTables::Table inputLevels = [] {
    GammaTables::Table levels = {};
    for (std::size_t index = 0; index < GammaTables::size; ++index)
        levels[index] = static_cast<float>(index) / 255.0F;
    return levels;
}();

void fill(GammaTables::Table &table, double channelFactor)
{
    const auto factor = static_cast<float>(channelFactor);
    for (std::size_t index = 0; index < GammaTables::size; ++index) {
        // Written so that each comparison is one minimum or maximum instruction for several entries at once.
        float value = inputLevels[index] * factor;
        value = 0.0F < value ? value : 0.0F;
        table[index] = 1.0F < value ? 1.0F : value;
    }
}

} // namespace

GammaTables DisplayManager::createGammaTables(double temperature)
{
    const auto factors = channelFactors(temperature);
    GammaTables tables; // filled below; zeroing it first would cost as much as filling it
    fill(tables.red, factors.red);
    fill(tables.green, factors.green);
    fill(tables.blue, factors.blue);
    return tables;
}

} // namespace ambertide
