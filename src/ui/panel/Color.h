#pragma once

#include <QColor>

namespace ambertide::Color {

/// The colour that stands for a colour temperature in kelvin where it is shown to people; opaque sRGB. Values outside
/// 1000 to 6500 count as the nearer end.
QColor fromTemperature(double kelvin);

} // namespace ambertide::Color
