#include "ui/controls/TextStyle.h"

#include <QApplication>
#include <QScreen>

#include <algorithm>

namespace ambertide {

namespace {

constexpr double pointsPerInch = 72;
constexpr double logicalPixelsPerInch = 96;
constexpr double smallestUsualSize = 9; // points
constexpr double largestUsualSize = 10;
constexpr double largestScale = 4;

double logicalSize(TextStyle style)
{
    switch (style) {
    case TextStyle::Title:
        return 22;
    case TextStyle::Title3:
        return 15;
    case TextStyle::Headline:
    case TextStyle::Body:
        return 13;
    case TextStyle::Subheadline:
        return 11;
    case TextStyle::Caption:
        break;
    }
    return 10;
}

} // namespace

double textScale()
{
    const QFont font = QApplication::font();
    const auto *screen = QGuiApplication::primaryScreen();
    const double resolution = screen != nullptr ? screen->logicalDotsPerInch() : logicalPixelsPerInch;
    const double pixels = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * resolution / pointsPerInch;
    const double points = pixels * pointsPerInch / logicalPixelsPerInch;
    if (!(points > 0))
        return 1;
    return std::min(largestScale, points / std::clamp(points, smallestUsualSize, largestUsualSize));
}

QFont textFont(TextStyle style)
{
    QFont font = QApplication::font();
    font.setPixelSize(qRound(logicalSize(style) * textScale()));
    if (style == TextStyle::Title)
        font.setWeight(QFont::Bold);
    if (style == TextStyle::Headline)
        font.setWeight(QFont::DemiBold);
    if (style == TextStyle::Title3)
        font.setWeight(QFont::Medium);
    return font;
}

} // namespace ambertide
