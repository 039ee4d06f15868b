#include "ui/controls/TextStyle.h"

#include <QApplication>
#include <QScreen>

#include <algorithm>
#include <array>

namespace ambertide {

namespace {

constexpr double pointsPerInch = 72;
constexpr double logicalPixelsPerInch = 96;
constexpr double smallestUsualSize = 9; // points
constexpr double largestUsualSize = 10;
constexpr double largestScale = 4;

struct Cut
{
    double size; ///< in logical pixels
    QFont::Weight weight = QFont::Normal;
};

/// In the order of TextStyle.
constexpr std::array<Cut, 6> cuts = {{{22, QFont::Bold}, {15, QFont::Medium}, {13, QFont::DemiBold}, {13}, {11}, {10}}};

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
    const auto &cut = cuts.at(static_cast<std::size_t>(style));
    QFont font = QApplication::font();
    font.setPixelSize(qRound(cut.size * textScale()));
    font.setWeight(std::max(font.weight(), cut.weight));
    return font;
}

} // namespace ambertide
