#pragma once

#include <QString>

namespace ambertide {

/// Longest release notes that are read or shown, in bytes or characters.
inline constexpr qsizetype longestReleaseNotes = 256 * 1024;

/// The text of release notes written in HTML: paragraphs and list items on lines of their own, scripts and styles left
/// out. The result is plain text, so nothing in the notes can be fetched or run. Broken HTML gives broken text and
/// nothing worse. Linear in time.
QString plainTextOfHtml(const QString &html);

/// Plain text made fit to be shown: shortened to the longest length, without control characters and without marks that
/// turn the direction of writing around.
QString displayableText(QString text);

} // namespace ambertide
