#pragma once

#include <QFont>

namespace ambertide {

/// The sizes of text, in logical pixels: title 22, title 3 15, headline 13 bold, body 13, subheadline 11, caption 10.
/// That is with the usual font of a desktop, which has 9 to 10 points; they grow and shrink with the user's.
enum class TextStyle { Title, Title3, Headline, Body, Subheadline, Caption };

/// The application's font in that size.
QFont textFont(TextStyle style);

/// How many times larger than usual the user's font is.
double textScale();

} // namespace ambertide
