#include "update/VersionComparator.h"

#include <algorithm>

namespace ambertide {

namespace {

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isText(char character)
{
    const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    // Bytes of other scripts are text; what is left of ASCII separates.
    return isLetter || static_cast<unsigned char>(character) >= 0x80;
}

/// Hands out a version as numbers, a text, numbers, a text, and so on. Either part may be empty.
class VersionParts
{
public:
    explicit VersionParts(std::string_view version) : m_rest(version.substr(0, version.find('-'))) {}

    bool isAtEnd() const { return m_rest.empty(); }

    /// The next number without leading zeros, so that 0 is empty; empty too where a text or the end comes first.
    std::string_view nextNumber()
    {
        skipSeparators();
        const auto digits = take(isDigit);
        return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
    }
    bool hasNumber()
    {
        skipSeparators();
        return !m_rest.empty() && isDigit(m_rest.front());
    }
    std::string_view nextText()
    {
        skipSeparators();
        return take(isText);
    }

private:
    template <typename Predicate>
    std::string_view take(Predicate belongs)
    {
        const auto end = std::ranges::find_if_not(m_rest, belongs);
        const auto taken = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.begin()));
        m_rest.remove_prefix(taken.size());
        return taken;
    }
    void skipSeparators()
    {
        take([](char character) { return !isDigit(character) && !isText(character); });
    }

    std::string_view m_rest;
};

std::weak_ordering compareNumbers(std::string_view left, std::string_view right)
{
    if (left.size() != right.size())
        return left.size() <=> right.size();
    return left.compare(right) <=> 0;
}

/// A text marks what comes before the version without it.
std::weak_ordering compareTexts(std::string_view left, std::string_view right)
{
    if (left.empty() != right.empty())
        return left.empty() ? std::weak_ordering::greater : std::weak_ordering::less;
    return left.compare(right) <=> 0;
}

} // namespace

std::weak_ordering compareVersions(std::string_view left, std::string_view right)
{
    VersionParts leftParts(left);
    VersionParts rightParts(right);
    while (!leftParts.isAtEnd() || !rightParts.isAtEnd()) {
        while (leftParts.hasNumber() || rightParts.hasNumber()) {
            if (const auto order = compareNumbers(leftParts.nextNumber(), rightParts.nextNumber()); order != 0)
                return order;
        }
        if (const auto order = compareTexts(leftParts.nextText(), rightParts.nextText()); order != 0)
            return order;
    }
    return std::weak_ordering::equivalent;
}

} // namespace ambertide
