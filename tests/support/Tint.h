#pragma once

#include "adapters/linux/displays/shared/GammaRamp.h"

#include <algorithm>

namespace ambertide {

/// Straight lines, of blue up to that level; 1 is the identity.
inline GammaTables tint(float blue)
{
    GammaTables tables;
    for (std::size_t i = 0; i < GammaTables::size; ++i) {
        tables.red[i] = tables.green[i] = static_cast<float>(i) / 255;
        tables.blue[i] = blue * tables.red[i];
    }
    return tables;
}

/// Whether these are its levels of red, green and blue, for a table of a third of that size.
inline bool isTint(std::span<const std::uint16_t> levels, float blue)
{
    return std::ranges::equal(levels, GammaRamp(tint(blue), static_cast<std::uint16_t>(levels.size() / 3)).levels());
}

} // namespace ambertide
