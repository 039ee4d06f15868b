#include "model/presets/ActionSearch.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace ambertide {

namespace {

/// Bytes; far more than any request needs.
constexpr std::size_t longestQuery = 256;
/// Too many other searches begin with shorter ones.
constexpr std::size_t shortestName = 3;
constexpr std::size_t shortestNumber = 2;

struct Name
{
    std::string_view word; ///< lower case
    ColorTemperature temperature;
    double relevance;
};

using enum ColorTemperature;
constexpr Name names[] = {
    {"warmest", k1000, 1},     {"warm", k1000, 0.9},       {"warm", k1900, 0.8},     {"warm", k2700, 0.7},
    {"warm", k3400, 0.6},      {"candle", k1900, 1},       {"candles", k1900, 1},    {"candlelight", k1900, 1},
    {"tungsten", k2700, 1},    {"incandescent", k2700, 1}, {"halogen", k3400, 1},    {"flourescent", k4200, 1},
    {"fluorescent", k4200, 1}, {"florescent", k4200, 1},   {"flurescent", k4200, 1}, {"fluorecent", k4200, 1},
    {"sunlight", k5500, 1},    {"sunshine", k5500, 1},     {"daylight", k6500, 1},   {"neutral", k6500, 1},
    {"normal", k6500, 0.9},    {"coolest", k6500, 0.9},    {"coldest", k6500, 0.9},  {"cool", k6500, 0.8},
    {"cold", k6500, 0.8},      {"cool", k5500, 0.7},       {"cold", k5500, 0.7},
};

/// Words of a request that say nothing about the value.
constexpr std::string_view courtesies[] = {
    "ambertide", "bulb",        "change", "color",   "colour",   "display", "displays", "in",     "k",       "kelvin",
    "lamp",      "light",       "make",   "monitor", "monitors", "my",      "please",   "screen", "screens", "set",
    "switch",    "temperature", "the",    "tint",    "to",       "turn",    "white",    "with",
};

/// How well each preset fits, by position; 0 is not at all.
using Fit = std::array<double, colorTemperatureCount>;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isPartOfWord(char character)
{
    const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    return isLetter || isDigit(character) || static_cast<unsigned char>(character) >= 0x80;
}

char lowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::vector<std::string> wordsOf(std::string_view query)
{
    std::vector<std::string> words;
    bool isInsideWord = false;
    for (const char character : query) {
        if (!isPartOfWord(character)) {
            isInsideWord = false;
            continue;
        }
        if (!isInsideWord)
            words.emplace_back();
        isInsideWord = true;
        words.back() += lowerCase(character);
    }
    return words;
}

/// For "34", "3400", "3400k" and "3400kelvin". An unfinished number fits the presets that begin with it.
std::optional<Fit> fitOfNumber(std::string_view word)
{
    const auto digits =
        word.substr(0, static_cast<std::size_t>(std::ranges::find_if_not(word, isDigit) - word.begin()));
    const auto unit = word.substr(digits.size());
    if (digits.size() < shortestNumber || !(unit.empty() || unit == "k" || unit == "kelvin"))
        return std::nullopt;
    Fit fit{};
    for (const auto preset : allColorTemperatures()) {
        const auto number = std::to_string(rawValue(preset));
        if (number == digits)
            fit[static_cast<std::size_t>(preset)] = 1;
        else if (unit.empty() && number.starts_with(digits))
            fit[static_cast<std::size_t>(preset)] = 0.2 * static_cast<double>(digits.size());
    }
    return fit;
}

std::optional<Fit> fitOfName(std::string_view word)
{
    std::optional<Fit> fit;
    for (const auto &name : names) {
        if (word.size() < shortestName || !name.word.starts_with(word))
            continue;
        if (!fit)
            fit.emplace();
        auto &best = (*fit)[static_cast<std::size_t>(name.temperature)];
        const double typedPart = static_cast<double>(word.size()) / static_cast<double>(name.word.size());
        best = std::max(best, name.relevance * (0.5 + 0.5 * typedPart));
    }
    return fit;
}

bool isCourtesy(std::string_view word, bool mayBeUnfinished)
{
    return std::ranges::any_of(courtesies, [word, mayBeUnfinished](std::string_view courtesy) {
        return mayBeUnfinished ? courtesy.starts_with(word) : courtesy == word;
    });
}

} // namespace

std::vector<ActionMatch> findColorTemperatures(std::string_view query)
{
    if (query.size() > longestQuery)
        return {};
    const auto words = wordsOf(query);
    std::optional<Fit> fit; // of every word that says something about the temperature
    for (const auto &word : words) {
        if (isCourtesy(word, fit && &word == &words.back()))
            continue;
        const auto number = fitOfNumber(word);
        const auto fitOfWord = number ? number : fitOfName(word);
        if (!fitOfWord)
            return {};
        if (!fit)
            fit = fitOfWord;
        else
            std::ranges::transform(*fit, *fitOfWord, fit->begin(), [](double a, double b) { return std::min(a, b); });
    }
    std::vector<ActionMatch> matches;
    for (const auto preset : allColorTemperatures()) {
        if (const double relevance = fit ? (*fit)[static_cast<std::size_t>(preset)] : 0; relevance > 0)
            matches.push_back({preset, relevance});
    }
    std::ranges::stable_sort(matches, std::ranges::greater(), &ActionMatch::relevance);
    return matches;
}

} // namespace ambertide
