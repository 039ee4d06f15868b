#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ambertide {

/// One group in the text of a KConfig file, for edits that keep every other byte of the file.
///
/// In a KConfig file groups and keys may occur more than once; of a key, the last line counts. Lines for a language
/// (`Key[de]=`) are other keys. Options follow the name: `Key[$i]=` must not be changed, `Key[$d]` is deleted. A group
/// or a whole file can be marked `[$i]`, too.
class KConfigGroup
{
public:
    /// `name` is that of a top-level group.
    KConfigGroup(std::string_view text, std::string_view name);

    std::string text() const;

    bool exists() const;
    /// Whether the key may not be changed by anybody.
    bool isImmutable(std::string_view key) const;
    /// Without the white space around it; nothing when the key is absent or deleted.
    std::optional<std::string> value(std::string_view key) const;
    /// The line that counts, as it stands in the file; nothing when there is none.
    std::optional<std::string> line(std::string_view key) const;

    /// Replaces the line that counts, or else adds one at the end of the group, which is made if it is missing. Without
    /// a `line`, removes the one that counts.
    void setLine(std::string_view key, const std::optional<std::string> &line);
    void setValue(std::string_view key, std::string_view value);
    /// Removes the group's last header, if the group has no lines after it.
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
