#include "ui/controls/ControlDrawing.h"

#include "ui/controls/Drawing.h"

#include <QEasingCurve>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>

#include <algorithm>

namespace ambertide {

namespace {

// Logical pixels.
constexpr int buttonPaddingX = 12;
constexpr int buttonPaddingY = 5;
constexpr int rowSymbolGap = 6;
constexpr QSize usualSwitch(32, 18); // it grows with the text, as do symbols
constexpr double switchThumbInset = 2;
constexpr int switchGap = 8;
constexpr int usualTabSymbol = 20;
constexpr int tabSymbolGap = 3;
constexpr int tabPaddingX = 14;
constexpr int tabPaddingY = 6;
constexpr int tabGap = 4;
constexpr double tabRadius = 8;
constexpr double sliderTrack = 4;
constexpr int shortestScrollThumb = 32;
constexpr double scrollThumbInset = 2;
constexpr int fieldPaddingX = 8;
constexpr int fieldPaddingY = 5;

constexpr double disabledOpacity = 0.45;
constexpr double hoveredRowOpacity = 0.9;
constexpr double restingScrollOpacity = 0.35;
constexpr double touchedScrollOpacity = 0.6;

QSize switchBody() { return usualSwitch * textScale(); }

int tabSymbol() { return qRound(usualTabSymbol * textScale()); }

bool isHovered(const QStyleOption &option)
{
    return option.state.testFlag(QStyle::State_MouseOver) && option.state.testFlag(QStyle::State_Enabled);
}

bool isFocusShown(const QStyleOption &option)
{
    return option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange);
}

bool isMirrored(const QStyleOption &option) { return option.direction == Qt::RightToLeft; }

void drawLine(QPainter &painter, const QStyleOption &option, const QRect &line, const QString &text)
{
    const auto alignment = QStyle::visualAlignment(option.direction, Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawText(QStyle::visualRect(option.direction, option.rect, line), static_cast<int>(alignment), text);
}

bool isFramed(const Button::Look &look)
{
    return look.kind == Button::Kind::Bordered || look.kind == Button::Kind::Prominent;
}

int symbolSize(const Button::Look &look) { return look.symbol.isEmpty() ? 0 : qRound(look.symbolSize * textScale()); }

void drawFramedButton(QPainter &painter, const QStyleOptionButton &option, const Theme &theme, bool isProminent)
{
    constexpr int gap = Button::ringGap;
    const QRectF shape = QRectF(option.rect).adjusted(gap, gap, -gap, -gap);
    fillRounded(painter, shape, controlRadius, isProminent ? theme.accent : theme.button);
    if (!isProminent || theme.isHighContrast)
        strokeRounded(painter, shape, controlRadius, theme.buttonOutline);
    if (option.state.testFlag(QStyle::State_Sunken))
        fillRounded(painter, shape, controlRadius, QColor(0, 0, 0, 40));
    else if (isHovered(option))
        fillRounded(painter, shape, controlRadius, isProminent ? QColor(0, 0, 0, 20) : theme.hover);
    painter.setPen(isProminent ? theme.onAccent : theme.text);
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextShowMnemonic, option.text);
    if (isFocusShown(option))
        drawFocusRing(painter, option.rect, controlRadius + gap, isProminent ? theme.text : theme.accent);
}

void drawPlainButton(QPainter &painter, const QStyleOptionButton &option, const Theme &theme, const Button::Look &look)
{
    const int inset = look.highlightInset;
    const QRect highlight = option.rect.adjusted(inset, inset, -inset, -inset);
    const bool isHighlighted = isHovered(option);
    if (isHighlighted)
        fillRounded(painter, highlight, controlRadius, theme.hover);
    if (isHighlighted && !option.text.isEmpty())
        painter.setOpacity(hoveredRowOpacity);
    const QColor ink = theme.*(isHighlighted ? look.hoverInk.value_or(look.ink) : look.ink);
    QRect line = option.rect.adjusted(look.paddingX, 0, -look.paddingX, 0);
    if (const int size = symbolSize(look); size > 0) {
        const QRect square(line.left(), (option.rect.height() - size) / 2, size, size);
        drawSymbol(painter, QStyle::visualRect(option.direction, option.rect, square), look.symbol, ink);
        line.setLeft(line.left() + size + rowSymbolGap);
    }
    painter.setPen(ink);
    drawLine(painter, option, line, option.text);
    if (isFocusShown(option))
        drawFocusRing(painter, highlight, controlRadius, theme.accent);
}

QMargins padding(SwitchRow::Kind kind)
{
    switch (kind) {
    case SwitchRow::Kind::Menu:
        return {8, 6, 8, 6};
    case SwitchRow::Kind::Form:
        return {14, 10, 14, 10};
    case SwitchRow::Kind::Inline:
        break;
    }
    return {4, 4, 4, 4};
}

int chevronRoom() { return 2 * (qRound(fieldChevron * textScale()) + 2 * fieldChevronPadding) + fieldEndPadding; }

} // namespace

QSize buttonSize(const QStyleOptionButton &option, const Button::Look &look)
{
    const int text = option.fontMetrics.horizontalAdvance(option.text);
    const int line = option.fontMetrics.height();
    if (isFramed(look))
        return {text + 2 * (buttonPaddingX + Button::ringGap), line + 2 * (buttonPaddingY + Button::ringGap)};
    const int symbol = symbolSize(look);
    const bool isIcon = look.kind == Button::Kind::Icon;
    const QSize content = isIcon ? QSize(symbol, symbol) : QSize(text + (symbol > 0 ? symbol + rowSymbolGap : 0), line);
    return content + QSize(2 * look.paddingX, 2 * look.paddingY);
}

void drawButton(QPainter &painter, const QStyleOptionButton &option, const Button::Look &look)
{
    const auto theme = Theme::of(option.palette);
    painter.setOpacity(option.state.testFlag(QStyle::State_Enabled) ? 1 : disabledOpacity);
    if (isFramed(look))
        drawFramedButton(painter, option, theme, look.kind == Button::Kind::Prominent);
    else
        drawPlainButton(painter, option, theme, look);
}

QSize switchSize(const QStyleOptionButton &option, SwitchRow::Kind kind)
{
    const auto margins = padding(kind);
    const QSize body = switchBody();
    return {option.fontMetrics.horizontalAdvance(option.text) + switchGap + body.width() + margins.left() +
                margins.right(),
            qMax(option.fontMetrics.height(), body.height()) + margins.top() + margins.bottom()};
}

void drawSwitch(QPainter &painter, const QStyleOptionButton &option, const SwitchRow &row)
{
    const auto theme = Theme::of(option.palette);
    const bool isHighlighted = row.kind() == SwitchRow::Kind::Menu && isHovered(option);
    const double opacity = !option.state.testFlag(QStyle::State_Enabled) ? disabledOpacity
                           : isHighlighted                               ? hoveredRowOpacity
                                                                         : 1;
    painter.setOpacity(opacity);
    if (isHighlighted)
        fillRounded(painter, option.rect, controlRadius, theme.hover);

    const QRect line = option.rect.marginsRemoved(padding(row.kind()));
    const QRectF body = QStyle::alignedRect(option.direction, Qt::AlignRight | Qt::AlignVCenter, switchBody(), line);
    const double radius = body.height() / 2;
    const double position = row.thumbPosition();
    fillRounded(painter, body, radius, theme.track);
    strokeRounded(painter, body, radius, theme.trackOutline);
    painter.setOpacity(opacity * position);
    fillRounded(painter, body, radius, theme.accent);
    painter.setOpacity(opacity);
    if (theme.isHighContrast)
        strokeRounded(painter, body, radius, theme.text);
    const double size = body.height() - 2 * switchThumbInset;
    const double travelled = (body.width() - body.height()) * (isMirrored(option) ? 1 - position : position);
    drawThumb(painter, {body.left() + switchThumbInset + travelled, body.top() + switchThumbInset, size, size},
              theme.isHighContrast);

    painter.setPen(theme.text);
    drawLine(painter, option, line.adjusted(0, 0, -switchBody().width() - switchGap, 0), option.text);
    if (isFocusShown(option))
        drawFocusRing(painter, row.kind() == SwitchRow::Kind::Form ? option.rect.adjusted(4, 3, -4, -3) : option.rect,
                      controlRadius, theme.accent);
}

QSize tabSize(const QStyleOptionTab &option)
{
    return {qMax(option.fontMetrics.horizontalAdvance(option.text), tabSymbol()) + 2 * tabPaddingX + tabGap,
            tabSymbol() + tabSymbolGap + option.fontMetrics.height() + 2 * tabPaddingY};
}

void drawTab(QPainter &painter, const QStyleOptionTab &option, QLatin1String symbol)
{
    const auto theme = Theme::of(option.palette);
    const QRect shape = option.rect.adjusted(tabGap / 2, 0, -tabGap / 2, 0);
    const bool isCurrent = option.state.testFlag(QStyle::State_Selected);
    if (isCurrent || isHovered(option))
        fillRounded(painter, shape, tabRadius, theme.hover);
    const QColor ink = isCurrent ? theme.accentText : isHovered(option) ? theme.text : theme.secondaryText;
    const int symbolSize = tabSymbol();
    const QRect square(shape.center().x() + 1 - symbolSize / 2, shape.top() + tabPaddingY, symbolSize, symbolSize);
    drawSymbol(painter, square, symbol, ink);
    painter.setPen(ink);
    painter.drawText(shape.adjusted(0, tabPaddingY + symbolSize + tabSymbolGap, 0, -tabPaddingY), Qt::AlignCenter,
                     option.text);
    if (isCurrent && theme.isHighContrast)
        strokeRounded(painter, shape, tabRadius, theme.text);
    if (isFocusShown(option))
        drawFocusRing(painter, shape, tabRadius, theme.accent);
}

QRect sliderGroove(const QStyleOptionSlider &option)
{
    return option.rect.adjusted(sliderRingGap, 0, -sliderRingGap, 0);
}

QRect sliderHandle(const QStyleOptionSlider &option)
{
    const QRect groove = sliderGroove(option);
    const int travelled = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                          groove.width() - sliderThumb, option.upsideDown);
    return {groove.left() + travelled, (option.rect.height() - sliderThumb) / 2, sliderThumb, sliderThumb};
}

void drawSlider(QPainter &painter, const QStyleOptionSlider &option)
{
    const auto theme = Theme::of(option.palette);
    const QRectF disc = sliderHandle(option);
    const QRectF groove = sliderGroove(option);
    const QRectF track(groove.left(), (groove.height() - sliderTrack) / 2, groove.width(), sliderTrack);
    QRectF reached = track;
    if (option.upsideDown) // a slider tells its direction by this alone
        reached.setLeft(disc.center().x());
    else
        reached.setRight(disc.center().x());
    fillRounded(painter, track, sliderTrack / 2, theme.track);
    fillRounded(painter, reached, sliderTrack / 2, theme.accent);
    drawThumb(painter, disc, theme.isHighContrast);
    if (isFocusShown(option)) {
        constexpr int gap = sliderRingGap;
        drawFocusRing(painter, disc.adjusted(-gap, -gap, gap, gap), disc.width(), theme.accent);
    }
}

QRect scrollThumb(const QStyleOptionSlider &option)
{
    const QRect groove = option.rect;
    const bool isHorizontal = option.orientation == Qt::Horizontal;
    const int room = isHorizontal ? groove.width() : groove.height();
    const qint64 range = qint64(option.maximum) - option.minimum;
    const auto share = room * qint64(option.pageStep) / qMax(qint64(1), range + option.pageStep);
    const int length = range == 0 ? room : qMin(room, qMax(shortestScrollThumb, static_cast<int>(share)));
    const int start = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                      room - length, option.upsideDown);
    const QRect thumb = isHorizontal ? QRect(groove.x() + start, groove.y(), length, groove.height())
                                     : QRect(groove.x(), groove.y() + start, groove.width(), length);
    return QStyle::visualRect(option.direction, groove, thumb);
}

void drawScrollBar(QPainter &painter, const QStyleOptionSlider &option)
{
    const auto theme = Theme::of(option.palette);
    const QRectF thumb =
        QRectF(scrollThumb(option)).adjusted(scrollThumbInset, scrollThumbInset, -scrollThumbInset, -scrollThumbInset);
    const bool isTouched = isHovered(option) || option.state.testFlag(QStyle::State_Sunken);
    QColor ink = theme.text;
    ink.setAlphaF(static_cast<float>(theme.isHighContrast ? 1
                                     : isTouched          ? touchedScrollOpacity
                                                          : restingScrollOpacity));
    fillRounded(painter, thumb, qMin(thumb.width(), thumb.height()) / 2, ink);
}

bool isBusy(const QStyleOptionProgressBar &option) { return option.minimum == option.maximum; }

void drawProgressBar(QPainter &painter, const QStyleOptionProgressBar &option, std::optional<double> sweep)
{
    constexpr double sweepLength = 0.3; // of the bar
    const auto theme = Theme::of(option.palette);
    const double width = option.rect.width();
    const double height = option.rect.height();
    const double radius = height / 2;
    fillRounded(painter, option.rect, radius, theme.track);
    painter.save();
    QPainterPath outline;
    outline.addRoundedRect(option.rect, radius, radius);
    painter.setClipPath(outline);
    if (isMirrored(option)) {
        painter.translate(width, 0);
        painter.scale(-1, 1);
    }
    const auto fill = [&](double start, double length) {
        fillRounded(painter, {start, 0, length, height}, radius, theme.accent);
    };
    if (!isBusy(option)) {
        const double reached = std::max(option.progress, option.minimum) - option.minimum;
        fill(0, reached / (option.maximum - option.minimum) * width);
    } else if (sweep) {
        const double length = sweepLength * width;
        fill(QEasingCurve(QEasingCurve::InOutSine).valueForProgress(*sweep) * (width + length) - length, length);
    } else {
        for (int mark = 0; (4 * mark + 1) * height < width; ++mark)
            fill((4 * mark + 1) * height, 2 * height);
    }
    painter.restore();
    if (theme.isHighContrast)
        strokeRounded(painter, option.rect, radius, theme.hairline);
}

QSize timeFieldSize(const QSize &text)
{
    return {text.width() + fieldPaddingX + chevronRoom(), text.height() + 2 * fieldPaddingY};
}

QRect timeFieldText(const QRect &field)
{
    return QStyle::visualRect(QGuiApplication::layoutDirection(), field,
                              field.adjusted(fieldPaddingX, fieldPaddingY, -chevronRoom(), -fieldPaddingY));
}

void drawTimeField(QPainter &painter, const QStyleOption &option, bool isReadable)
{
    const auto theme = Theme::of(option.palette);
    fillRounded(painter, option.rect, controlRadius, theme.button);
    strokeRounded(painter, option.rect, controlRadius, isReadable ? theme.buttonOutline : theme.red);
    if (option.state.testFlag(QStyle::State_HasFocus))
        drawFocusRing(painter, option.rect, controlRadius, isReadable ? theme.accent : theme.red);
}

} // namespace ambertide
