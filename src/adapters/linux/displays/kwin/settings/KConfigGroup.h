#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ambertide {

/// One group in the text of a KConfig file, for edits that keep every other byte of the file.
///
/// KConfig lets groups and keys occur more than once: of a key, the last line counts. Lines for a language
/// (`Key[de]=`) are other keys. Options stand behind the name: `Key[$i]=` may not be changed, `Key[$d]` is deleted. A
/// group's name or a whole file can be marked `[$i]` too.
class KConfigGroup
{
public:
    /// `name` is that of a group at the top of the file.
    KConfigGroup(std::string_view text, std::string_view name);

    std::string text() const;

    bool exists() const;
    /// Whether the key may not be changed by anybody.
    bool isImmutable(std::string_view key) const;
    /// Without the white space around it; nothing when the key is absent or deleted.
    std::optional<std::string> value(std::string_view key) const;
    /// The line that counts, as it stands in the file; nothing when there is none.
    std::optional<std::string> line(std::string_view key) const;

    /// Puts the line in the place of the one that counts, or at the end of the group, which is made where it is
    /// missing. Nothing removes the line.
    void setLine(std::string_view key, const std::optional<std::string> &line);
    void setValue(std::string_view key, std::string_view value);
    /// Removes the group's header where nothing follows it in the group.
    void removeIfEmpty();

private:
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

    bool isHeader(std::size_t index) const;
    std::size_t find(std::string_view key) const;
    std::size_t lastHeader() const;
    std::size_t lastUsedLine(std::size_t header) const;
    void makeGroup();

    const std::string m_header;
    std::vector<std::string> m_lines; ///< without their line feeds; the last is empty where the text ends with one
};

} // namespace ambertide
