#include "model/presets/ColorTemperature.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

namespace ambertide {

namespace {

using enum ColorTemperature;
constexpr std::pair<ColorTemperature, const char *> landmarks[] = {
    {k1000, QT_TRANSLATE_NOOP("ambertide::ColorTemperature", "Warmest")},
    {k1900, QT_TRANSLATE_NOOP("ambertide::ColorTemperature", "Candle")},
    {k2700, QT_TRANSLATE_NOOP("ambertide::ColorTemperature", "Tungsten")},
    {k3400, QT_TRANSLATE_NOOP("ambertide::ColorTemperature", "Halogen")},
    {k4200, QT_TRANSLATE_NOOP("ambertide::ColorTemperature", "Flourescent")}, // as stored shortcuts spell it
    {k5500, QT_TRANSLATE_NOOP("ambertide::ColorTemperature", "Sunlight")},
    {k6500, QT_TRANSLATE_NOOP("ambertide::ColorTemperature", "Daylight")},
};

} // namespace

std::span<const ColorTemperature> allColorTemperatures()
{
    static constexpr auto presets = [] {
        std::array<ColorTemperature, colorTemperatureCount> all{};
        for (std::size_t position = 0; position < all.size(); ++position)
            all[position] = static_cast<ColorTemperature>(position);
        return all;
    }();
    return presets;
}

const std::string &displayRepresentation(ColorTemperature preset)
{
    static const auto representations = [] {
        std::array<std::string, colorTemperatureCount> texts;
        for (const auto each : allColorTemperatures())
            texts[static_cast<std::size_t>(each)] = std::to_string(rawValue(each)) + 'K';
        for (const auto &[landmark, name] : landmarks)
            texts[static_cast<std::size_t>(landmark)]
                .append(" (")
                .append(QCoreApplication::translate("ambertide::ColorTemperature", name).toStdString())
                .append(")");
        return texts;
    }();
    return representations[static_cast<std::size_t>(preset)];
}

std::string identifier(ColorTemperature preset) { return 'k' + std::to_string(rawValue(preset)); }

std::optional<ColorTemperature> colorTemperature(std::string_view text)
{
    const auto presets = allColorTemperatures();
    const auto found = std::ranges::find(presets, text, identifier);
    return found != presets.end() ? std::optional(*found) : std::nullopt;
}

} // namespace ambertide
