#include "adapters/linux/desktop/DesktopEntry.h"

#include <utility>

namespace ambertide {

namespace {

constexpr std::string_view blanks = " \t\r";
/// What a backslash escapes inside of a quoted argument.
constexpr std::string_view quotedSpecials = "\"`$\\";

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view takeLine(std::string_view &text)
{
    const auto end = text.find('\n');
    const auto line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return trimmed(line);
}

char unescapedCharacter(char letter)
{
    switch (letter) {
    case 's':
        return ' ';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case '\\':
        return '\\';
    default:
        return '\0';
    }
}

std::string unescaped(std::string_view value)
{
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool isEscape = value[i] == '\\' && i + 1 < value.size();
        if (const char meant = isEscape ? unescapedCharacter(value[i + 1]) : '\0') {
            text += meant;
            ++i;
        } else {
            text += value[i];
        }
    }
    return text;
}

std::optional<std::string> firstArgument(std::string_view commandLine)
{
    const auto rest = trimmed(commandLine);
    if (!rest.starts_with('"'))
        return std::string(rest.substr(0, rest.find_first_of(" \t\r\n")));
    std::string argument;
    for (std::size_t i = 1; i < rest.size(); ++i) {
        if (rest[i] == '"')
            return argument;
        if (rest[i] == '\\' && i + 1 < rest.size() && quotedSpecials.find(rest[i + 1]) != std::string_view::npos)
            ++i;
        argument += rest[i];
    }
    return {};
}

std::string withoutDoubledPercents(std::string_view argument)
{
    std::string text;
    for (std::size_t i = 0; i < argument.size(); ++i) {
        text += argument[i];
        if (argument.substr(i, 2) == "%%")
            ++i;
    }
    return text;
}

} // namespace

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos)
        return {};
    DesktopEntry entry;
    bool isInside = false;
    while (!text.empty()) {
        const auto line = takeLine(text);
        if (line.empty() || line.starts_with('#'))
            continue;
        if (line.starts_with('[')) {
            if (isInside)
                break;
            if (line != "[Desktop Entry]")
                return {};
            isInside = true;
            continue;
        }
        const auto separator = line.find('=');
        if (isInside && separator != std::string_view::npos)
            entry.m_values[std::string(trimmed(line.substr(0, separator)))] = trimmed(line.substr(separator + 1));
    }
    if (!isInside)
        return {};
    return entry;
}

std::optional<std::string> DesktopEntry::string(std::string_view key) const
{
    const auto found = m_values.find(key);
    if (found == m_values.end())
        return {};
    return unescaped(found->second);
}

std::optional<bool> DesktopEntry::boolean(std::string_view key) const
{
    const auto found = m_values.find(key);
    if (found == m_values.end())
        return {};
    // The digits come from before the format was standardised, and are still honoured.
    if (found->second == "true" || found->second == "1")
        return true;
    if (found->second == "false" || found->second == "0")
        return false;
    return {};
}

std::optional<std::string> DesktopEntry::program() const
{
    const auto argument = firstArgument(string("Exec").value_or(std::string()));
    if (!argument || argument->empty())
        return {};
    return withoutDoubledPercents(*argument);
}

std::string DesktopEntry::escaped(std::string_view text)
{
    std::string value;
    for (const char character : text) {
        switch (character) {
        case '\n':
            value += "\\n";
            break;
        case '\t':
            value += "\\t";
            break;
        case '\r':
            value += "\\r";
            break;
        case '\\':
            value += "\\\\";
            break;
        default:
            value += character;
        }
    }
    // Blanks at either end would count as the line's layout.
    if (value.ends_with(' '))
        value.replace(value.size() - 1, 1, "\\s");
    if (value.starts_with(' '))
        value.replace(0, 1, "\\s");
    return value;
}

std::string DesktopEntry::execArgument(std::string_view text)
{
    std::string argument = "\"";
    for (const char character : text) {
        if (quotedSpecials.find(character) != std::string_view::npos)
            argument += '\\';
        argument += character;
        if (character == '%')
            argument += '%';
    }
    return escaped(argument + '"');
}

} // namespace ambertide
