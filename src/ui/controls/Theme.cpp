#include "ui/controls/Theme.h"

#include <algorithm>
#include <cmath>

namespace ambertide {

namespace {

constexpr double contrastOfText = 4.5;
constexpr double contrastOfSymbols = 3;
constexpr double contrastOfBlackAndWhite = 20.5;

// Relative luminance of WCAG 2.1, 0 to 1.
double luminance(const QColor &color)
{
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &from, const QColor &to, double share)
{
    const auto channel = [share](double first, double second) {
        return static_cast<float>(first + (second - first) * share);
    };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()));
}

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QColor withContrast(double contrast, const QColor &wanted, const QList<QColor> &surfaces, bool isDark)
{
    const QColor end = isDark ? Qt::white : Qt::black;
    constexpr int steps = 50;
    for (int step = 0; step < steps; ++step) {
        const QColor candidate = mixed(wanted, end, static_cast<double>(step) / steps);
        if (std::ranges::all_of(surfaces,
                                [&](const QColor &surface) { return contrastRatio(candidate, surface) >= contrast; }))
            return candidate;
    }
    return end;
}

} // namespace

double contrastRatio(const QColor &first, const QColor &second)
{
    const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor blended(const QColor &upper, const QColor &lower)
{
    return mixed(lower, QColor(upper.red(), upper.green(), upper.blue()), upper.alphaF());
}

Theme Theme::of(const QPalette &palette)
{
    Theme theme;
    // Only active colours: a disabled control is drawn fainter by the control itself.
    theme.window = palette.color(QPalette::Active, QPalette::Window);
    theme.text = palette.color(QPalette::Active, QPalette::WindowText);
    theme.isDark = luminance(theme.window) < luminance(theme.text);
    theme.isHighContrast = contrastRatio(theme.window, theme.text) >= contrastOfBlackAndWhite;
    const bool isDark = theme.isDark;
    const auto raised = [&](double inLight, double inDark) {
        return mixed(theme.window, Qt::white, isDark ? inDark : inLight);
    };
    theme.panel = theme.isHighContrast ? theme.window : raised(0.4, 0.03);
    theme.card = theme.isHighContrast ? theme.window : raised(1, 0.077);
    theme.hover = withAlpha(QColor(128, 128, 128), theme.isHighContrast ? 0.3 : 0.15);
    theme.hairline = withAlpha(theme.text, theme.isHighContrast ? 1 : isDark ? 0.11 : 0.1);
    theme.button = theme.isHighContrast ? theme.window : isDark ? raised(0, 0.165) : QColor(Qt::white);
    theme.buttonOutline = withAlpha(theme.text, theme.isHighContrast ? 1 : isDark ? 0.12 : 0.18);
    theme.track = mixed(theme.window, theme.text, isDark ? 0.25 : 0.14);

    const auto surfaces = theme.surfaces();
    const auto symbol = [&](const QColor &inLight, const QColor &inDark) {
        return withContrast(contrastOfSymbols, isDark ? inDark : inLight, surfaces + QList{theme.hoveredTwice()},
                            isDark);
    };
    const auto ink = [&](const QColor &inLight, const QColor &inDark) {
        return withContrast(contrastOfText, isDark ? inDark : inLight, surfaces, isDark);
    };
    const QColor amber(0xb3, 0x5c, 0x00);
    const QColor amberInDark(0xff, 0x9f, 0x45);
    const QColor red(0xd0, 0x34, 0x2c);
    const QColor green(0x2c, 0x9a, 0x46);
    theme.accent = symbol(amber, amberInDark);
    // Only for a symbol in the rows of cards. One green for light and dark, since the symbol has a white tick in it.
    theme.green = withContrast(contrastOfSymbols, green, {theme.card, blended(theme.hover, theme.card)}, isDark);
    theme.red = symbol(red, QColor(0xff, 0x45, 0x3a));
    theme.trackOutline = theme.isHighContrast ? theme.text : symbol(theme.track, theme.track);
    theme.accentText = ink(amber, amberInDark);
    theme.redText = ink(red, QColor(0xff, 0x6b, 0x60));
    theme.orangeText = ink(QColor(0xb8, 0x5c, 0x00), QColor(0xff, 0xa0, 0x4a));
    theme.blueText = ink(QColor(0x2f, 0x6f, 0xde), QColor(0x7a, 0xae, 0xff));
    theme.secondaryText = theme.isHighContrast
                              ? theme.text
                              : ink(mixed(theme.text, theme.window, 0.34), mixed(theme.text, theme.window, 0.37));
    theme.onAccent = isDark ? QColor(0x23, 0x12, 0x00) : QColor(Qt::white);
    return theme;
}

QList<QColor> Theme::surfaces() const
{
    return {window, panel, card, button, blended(hover, window), blended(hover, panel), blended(hover, card)};
}

void setAccent(QPalette &palette)
{
    const auto theme = Theme::of(palette);
    palette.setColor(QPalette::Highlight, theme.accent);
    palette.setColor(QPalette::HighlightedText, theme.onAccent);
    palette.setColor(QPalette::Link, theme.accentText);
    palette.setColor(QPalette::ToolTipBase, theme.card);
    palette.setColor(QPalette::ToolTipText, theme.text);
}

QPalette housePalette(bool isDark, bool isHighContrast)
{
    QColor window = isDark ? QColor(0x23, 0x23, 0x26) : QColor(0xf2, 0xf2, 0xf4);
    QColor text = isDark ? QColor(0xf2, 0xf2, 0xf4) : QColor(0x1d, 0x1d, 0x1f);
    if (isHighContrast) {
        window = isDark ? Qt::black : Qt::white;
        text = isDark ? Qt::white : Qt::black;
    }
    QPalette palette(window);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::All, role, text);
    palette.setColor(QPalette::All, QPalette::Window, window);
    setAccent(palette);
    const auto theme = Theme::of(palette);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase})
        palette.setColor(QPalette::All, role, theme.card);
    palette.setColor(QPalette::All, QPalette::Button, theme.button);
    palette.setColor(QPalette::All, QPalette::PlaceholderText, theme.secondaryText);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, mixed(text, window, 0.55));
    return palette;
}

} // namespace ambertide
