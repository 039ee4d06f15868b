#pragma once

#include <QString>

namespace ambertide {

/// Longest text that is read from a feed or shown, in bytes or characters.
inline constexpr qsizetype longestForeignText = 256 * 1024;

/// Plain text made fit to be shown: shortened to the longest length, without control characters other than line ends
/// and tabs, and without marks that turn the direction of writing around.
QString displayableText(QString text);

} // namespace ambertide
