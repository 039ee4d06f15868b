#pragma once

#include "ports/DisplayServices.h"

#include <cstdint>
#include <span>
#include <vector>

namespace ambertide {

/// The three transfer tables of one CRTC in the form that RandR takes: levels of 0 to 65535, as many as the CRTC asks
/// for.
class GammaRamp
{
public:
    /// Resamples the tables to `size` entries, at least 2, by linear interpolation. A level outside 0 to 1 becomes the
    /// nearer of the two; one that is not a number becomes 0.
    GammaRamp(const GammaTables &tables, std::uint16_t size);

    /// The ramp that leaves every level as it is. `size` is at least 2.
    static GammaRamp identity(std::uint16_t size);

    bool operator==(const GammaRamp &) const = default;

    std::uint16_t size() const { return m_size; }
    /// Red, green and blue, one after the other.
    std::span<const std::uint16_t> levels() const { return m_levels; }
    const std::uint16_t *red() const { return m_levels.data(); }
    const std::uint16_t *green() const { return m_levels.data() + m_size; }
    const std::uint16_t *blue() const { return m_levels.data() + 2 * std::size_t{m_size}; }

private:
    explicit GammaRamp(std::uint16_t size) : m_size(size), m_levels(3 * std::size_t{size}) {}

    std::uint16_t m_size;
    std::vector<std::uint16_t> m_levels;
};

} // namespace ambertide
