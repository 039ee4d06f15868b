#pragma once

#include "ui/controls/Button.h"
#include "ui/controls/SwitchRow.h"

#include <QStyleOption>

#include <optional>

namespace ambertide {

// How each control looks and how large it is, for the style. Lengths are in logical pixels.

QSize buttonSize(const QStyleOptionButton &option, const Button::Look &look);
void drawButton(QPainter &painter, const QStyleOptionButton &option, const Button::Look &look);

QSize switchSize(const QStyleOptionButton &option, SwitchRow::Kind kind);
void drawSwitch(QPainter &painter, const QStyleOptionButton &option, const SwitchRow &row);

/// A tab is a symbol over a word.
QSize tabSize(const QStyleOptionTab &option);
void drawTab(QPainter &painter, const QStyleOptionTab &option, QLatin1String symbol);

inline constexpr int sliderThumb = 18;
inline constexpr int sliderRingGap = 2; ///< around the thumb, for the focus ring
/// The range over which the thumb moves.
QRect sliderGroove(const QStyleOptionSlider &option);
QRect sliderHandle(const QStyleOptionSlider &option);
void drawSlider(QPainter &painter, const QStyleOptionSlider &option);

/// Scroll bars have no buttons at the ends, so the groove is the whole bar.
QRect scrollThumb(const QStyleOptionSlider &option);
void drawScrollBar(QPainter &painter, const QStyleOptionSlider &option);

bool isBusy(const QStyleOptionProgressBar &option);
/// `sweep` is how far the motion of a busy bar has come, 0 to 1; nothing where motion is unwanted.
void drawProgressBar(QPainter &painter, const QStyleOptionProgressBar &option, std::optional<double> sweep);

/// A field for hour and minute, with room for two small buttons at its end; red if its text cannot be read as a time.
QSize timeFieldSize(const QSize &text);
QRect timeFieldText(const QRect &field);
void drawTimeField(QPainter &painter, const QStyleOption &option, bool isReadable);

} // namespace ambertide
