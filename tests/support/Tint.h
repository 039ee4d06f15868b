#pragma once

#include "ports/DisplayServices.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <span>

namespace ambertide {

/// Straight lines, of blue up to that level, of green up to halfway between that and 1; 1 is the identity.
inline GammaTables tint(float blue)
{
    GammaTables tables;
    for (std::size_t i = 0; i < GammaTables::size; ++i) {
        tables.red[i] = static_cast<float>(i) / 255;
        tables.green[i] = (1 + blue) / 2 * tables.red[i];
        tables.blue[i] = blue * tables.red[i];
    }
    return tables;
}

/// Shows it at once, also where the system makes its own ramps.
inline void setTint(DisplayServices &services, float blue)
{
    services.beginRamp(tint(blue));
    services.setTransferTables(services.activeDisplays(), tint(blue));
}

/// Whether these are its levels of red, green and blue, one table after the other, to within a rounding.
inline bool isTint(std::span<const std::uint16_t> levels, double blue)
{
    const std::array white{65535.0, 65535 * (1 + blue) / 2, 65535 * blue};
    const auto size = levels.size() / 3;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const double expected = white[i / size] * static_cast<double>(i % size) / static_cast<double>(size - 1);
        if (std::abs(levels[i] - expected) > 1)
            return false;
    }
    return size > 1;
}

} // namespace ambertide
