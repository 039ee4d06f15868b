#include "adapters/linux/displays/kwin/NightLightTemperature.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace ambertide {

namespace {

struct Point
{
    double temperature; ///< kelvin
    double green;       ///< levels of white, where red has 1
    double blue;
};

/// Measured: the last entries of the gamma tables that KWin 6.3 gives a display at these settings. With straight lines
/// in between, the nearest temperature is within 5 K of what KWin's own table gives.
constexpr std::array points{
    Point{1900, 0.5194, 0.0000}, Point{2000, 0.5436, 0.0868}, Point{2200, 0.5874, 0.1836}, Point{2400, 0.6260, 0.2559},
    Point{2700, 0.6765, 0.3479}, Point{3000, 0.7198, 0.4286}, Point{3300, 0.7574, 0.5015}, Point{3700, 0.8005, 0.5888},
    Point{4100, 0.8372, 0.6669}, Point{4500, 0.8686, 0.7369}, Point{4900, 0.8958, 0.7999}, Point{5300, 0.9244, 0.8552},
    Point{5700, 0.9520, 0.9066}, Point{6100, 0.9771, 0.9548}, Point{6500, 1.0000, 1.0000},
};

} // namespace

int nearestNightLightTemperature(const GammaTables &tables)
{
    const double green = tables.green.back();
    const double blue = tables.blue.back();
    double leastDistance = std::numeric_limits<double>::infinity();
    double nearest = points.back().temperature;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const auto &low = points[i - 1];
        const auto &high = points[i];
        const double alongGreen = high.green - low.green;
        const double alongBlue = high.blue - low.blue;
        const double share = std::clamp(((green - low.green) * alongGreen + (blue - low.blue) * alongBlue) /
                                            (alongGreen * alongGreen + alongBlue * alongBlue),
                                        0.0, 1.0);
        const double distance = std::hypot(green - low.green - share * alongGreen, blue - low.blue - share * alongBlue);
        if (distance < leastDistance) {
            leastDistance = distance;
            nearest = std::lerp(low.temperature, high.temperature, share);
        }
    }
    return static_cast<int>(std::lround(nearest));
}

} // namespace ambertide
