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

/// A piecewise fit of black-body colour, every coefficient divided by 255. In the upper branch the scale belongs to
/// green and red goes without one; that pairing is deliberate.
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

void fill(GammaTables::Table &table, double channelFactor)
{
    const auto factor = static_cast<float>(channelFactor);
    for (std::size_t level = 0; level < GammaTables::size; ++level) {
        float value = static_cast<float>(level) / 255.0F * factor;
        value = value <= 0.0F ? 0.0F : value;
        table[level] = value > 1.0F ? 1.0F : value;
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
