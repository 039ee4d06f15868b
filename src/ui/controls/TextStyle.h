#pragma once

#include <QFont>

namespace ambertide {

/// The sizes of text. In logical pixels at the usual size of a desktop's font, which is 9 to 10 points: title 22, title
/// 3 15, headline 13 bold, body 13, subheadline 11, caption 10. They grow and shrink with the user's own.
enum class TextStyle { Title, Title3, Headline, Body, Subheadline, Caption };

/// The application's font in that size.
QFont textFont(TextStyle style);

/// How much larger than usual the user's font is.
double textScale();

} // namespace ambertide
