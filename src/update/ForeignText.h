#pragma once

#include <QString>

namespace ambertide {

/// Longest text that is read from a feed or shown, in bytes or characters.
inline constexpr qsizetype longestForeignText = 256 * 1024;

/// Makes plain text fit to be shown: cuts it to the longest length, and removes control characters other than line ends
/// and tabs, and the marks that change the direction of writing.
QString displayableText(QString text);

} // namespace ambertide
