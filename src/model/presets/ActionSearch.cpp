#include "model/presets/ActionSearch.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>
#include <optional>

namespace ambertide {

namespace {

/// In bytes; far more than any request needs.
constexpr std::size_t longestQuery = 256;
/// Shorter words are the beginning of too many searches for other things.
constexpr qsizetype shortestName = 3;
constexpr qsizetype shortestNumber = 2;

struct Names
{
    const char *words; ///< separated by spaces
    ColorTemperature temperature;
    double relevance;
};

constexpr char context[] = "ambertide::ActionSearch";

using enum ColorTemperature;
//: What people type to find a temperature: words in lower case, separated by spaces, as many as the language has.
constexpr Names names[] = {
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "warmest"), k1000, 1},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "warm"), k1000, 0.9},
    {"warm", k1900, 0.8},
    {"warm", k2700, 0.7},
    {"warm", k3400, 0.6},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "candle candles candlelight"), k1900, 1},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "tungsten incandescent"), k2700, 1},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "halogen"), k3400, 1},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "fluorescent flourescent florescent flurescent fluorecent"), k4200,
     1},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "sunlight sunshine"), k5500, 1},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "daylight neutral"), k6500, 1},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "normal coolest coldest"), k6500, 0.9},
    {QT_TRANSLATE_NOOP("ambertide::ActionSearch", "cool cold"), k6500, 0.8},
    {"cool cold", k5500, 0.7},
};

//: Words of a request that say nothing about the value, in lower case, separated by spaces.
constexpr char fillerWords[] = QT_TRANSLATE_NOOP(
    "ambertide::ActionSearch", "ambertide bulb change color colour display displays in k kelvin lamp light make "
                               "monitor monitors my please screen screens set switch temperature the tint to turn "
                               "white with");

/// Splits `words` in English and in the user's language.
QStringList inBothLanguages(const char *words)
{
    const QString english = QString::fromLatin1(words);
    return (english + u' ' + QCoreApplication::translate(context, words)).split(u' ', Qt::SkipEmptyParts);
}

/// How well each preset fits, by position; 0 is not at all.
using Fit = std::array<double, colorTemperatureCount>;

bool isDigit(QChar character) { return character >= u'0' && character <= u'9'; }

bool isPartOfWord(QChar character) { return character.isLetterOrNumber() || character.unicode() >= 0x80; }

QStringList wordsOf(std::string_view query)
{
    auto text = QString::fromUtf8(query.data(), static_cast<qsizetype>(query.size())).toLower();
    for (QChar &character : text) {
        if (!isPartOfWord(character))
            character = u' ';
    }
    return text.split(u' ', Qt::SkipEmptyParts);
}

/// For "34", "3400", "3400k" and "3400kelvin". An unfinished number fits the presets that begin with it.
std::optional<Fit> fitOfNumber(const QString &word)
{
    const auto digits = word.first(std::ranges::find_if_not(word, isDigit) - word.begin());
    const auto unit = word.sliced(digits.size());
    if (digits.size() < shortestNumber || !(unit.isEmpty() || unit == u"k" || unit == u"kelvin"))
        return std::nullopt;
    Fit fit{};
    for (const auto preset : allColorTemperatures()) {
        const auto number = QString::number(rawValue(preset));
        if (number == digits)
            fit[static_cast<std::size_t>(preset)] = 1;
        else if (unit.isEmpty() && number.startsWith(digits))
            fit[static_cast<std::size_t>(preset)] = 0.2 * static_cast<double>(digits.size());
    }
    return fit;
}

std::optional<Fit> fitOfName(const QString &word)
{
    std::optional<Fit> fit;
    for (const auto &[words, temperature, relevance] : names) {
        const auto known = inBothLanguages(words);
        for (const auto &name : known) {
            if (word.size() < shortestName || !name.startsWith(word))
                continue;
            if (!fit)
                fit.emplace();
            auto &best = (*fit)[static_cast<std::size_t>(temperature)];
            const double typedPart = static_cast<double>(word.size()) / static_cast<double>(name.size());
            best = std::max(best, relevance * (0.5 + 0.5 * typedPart));
        }
    }
    return fit;
}

bool isFiller(const QString &word, bool mayBeUnfinished)
{
    return std::ranges::any_of(inBothLanguages(fillerWords), [&word, mayBeUnfinished](const QString &filler) {
        return mayBeUnfinished ? filler.startsWith(word) : filler == word;
    });
}

} // namespace

std::vector<ActionMatch> findColorTemperatures(std::string_view query)
{
    if (query.size() > longestQuery)
        return {};
    const auto words = wordsOf(query);
    std::optional<Fit> fit; // to all words so far that say something about the temperature
    for (const auto &word : words) {
        if (isFiller(word, fit && &word == &words.constLast()))
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
