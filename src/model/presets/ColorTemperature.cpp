#include "model/presets/ColorTemperature.h"

#include <array>
#include <charconv>

namespace ambertide {

namespace {

std::string_view landmarkName(ColorTemperature preset)
{
    using enum ColorTemperature;
    switch (preset) {
    case k1000:
        return "Warmest";
    case k1900:
        return "Candle";
    case k2700:
        return "Tungsten";
    case k3400:
        return "Halogen";
    case k4200:
        return "Flourescent"; // spelt so wherever stored shortcuts show it
    case k5500:
        return "Sunlight";
    case k6500:
        return "Daylight";
    default:
        return {};
    }
}

auto makeRepresentations()
{
    std::array<std::string, colorTemperatureCount> representations;
    for (const auto preset : allColorTemperatures()) {
        auto &text = representations[static_cast<std::size_t>(preset)];
        text = std::to_string(rawValue(preset)) + 'K';
        if (const auto name = landmarkName(preset); !name.empty())
            text.append(" (").append(name).append(")");
    }
    return representations;
}

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
    static const auto representations = makeRepresentations();
    return representations[static_cast<std::size_t>(preset)];
}

std::string identifier(ColorTemperature preset) { return 'k' + std::to_string(rawValue(preset)); }

std::optional<ColorTemperature> colorTemperature(std::string_view identifier)
{
    std::int64_t kelvin = 0;
    if (identifier.size() != 5 || identifier.front() != 'k')
        return std::nullopt;
    const auto *end = identifier.data() + identifier.size();
    const auto [read, error] = std::from_chars(identifier.data() + 1, end, kelvin);
    return error == std::errc() && read == end ? colorTemperature(kelvin) : std::nullopt;
}

} // namespace ambertide
