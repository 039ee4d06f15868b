#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace ambertide {

/// The keys of one desktop entry file's main group, and the two escapes needed to write such a file. Follows the
/// Desktop Entry Specification 1.5; text of any content may be given.
///
/// As lenient as the programs that start such entries: lines that make no sense are passed over, of two equal keys the
/// last counts, localised keys are keys of their own.
class DesktopEntry
{
public:
    /// Nothing when the first group is not "[Desktop Entry]", or when the text holds a NUL byte.
    static std::optional<DesktopEntry> parse(std::string_view text);

    /// Unescaped; nothing when absent.
    std::optional<std::string> string(std::string_view key) const;
    /// Nothing when absent or no truth value.
    std::optional<bool> boolean(std::string_view key) const;
    /// What "Exec" starts: its first argument, unquoted. Nothing when absent, empty or with an open quote.
    std::optional<std::string> program() const;

    /// The text as a value of type string.
    static std::string escaped(std::string_view text);
    /// The text as one argument in a value of "Exec", whatever it contains.
    static std::string execArgument(std::string_view text);

private:
    std::map<std::string, std::string, std::less<>> m_values; ///< still escaped
};

} // namespace ambertide
