#include "ui/panel/Color.h"

#include <algorithm>

namespace ambertide {

namespace {

constexpr double warmest = 1000; // kelvin
constexpr double coolest = 6500;

} // namespace

QColor Color::fromTemperature(double kelvin)
{
    const double t = kelvin <= warmest ? 0 : (std::min(kelvin, coolest) - warmest) / (coolest - warmest);
    const double green = t < 0.5 ? t * 2 * 0.5 + 0.5 : 1;
    const double blue = t < 0.5 ? t * 2 * 0.8 : (t - 0.5) * 2 * 0.2 + 0.8;
    return QColor::fromRgbF(1, static_cast<float>(green), static_cast<float>(blue));
}

} // namespace ambertide
