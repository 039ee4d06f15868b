#include "adapters/linux/displays/kwin/settings/KConfigGroup.h"

#include <algorithm>

namespace ambertide {

namespace {

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view white = " \t\r";
    const auto first = text.find_first_not_of(white);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(white) - first + 1);
}

bool startsGroup(std::string_view line) { return trimmed(line).starts_with('['); }

/// Whether a `[$...]` anywhere in the name of a key or a group contains the option.
bool hasOption(std::string_view name, char option)
{
    for (auto at = name.find("[$"); at != std::string_view::npos; at = name.find("[$", at + 1)) {
        if (name.substr(at, name.find(']', at) - at).find(option) != std::string_view::npos)
            return true;
    }
    return false;
}

std::string_view nameOf(std::string_view line) { return trimmed(line.substr(0, line.find('='))); }

bool isLineOf(std::string_view line, std::string_view key)
{
    const auto name = nameOf(line);
    if (!name.starts_with(key))
        return false;
    const auto rest = trimmed(name.substr(key.size()));
    return rest.empty() ? line.find('=') != std::string_view::npos : rest.starts_with("[$");
}

} // namespace

KConfigGroup::KConfigGroup(std::string_view text, std::string_view name)
    : m_header(std::string{'['}.append(name).append("]"))
{
    for (std::size_t end = 0; end != std::string_view::npos; text.remove_prefix(std::min(end + 1, text.size()))) {
        end = text.find('\n');
        m_lines.emplace_back(text.substr(0, end));
    }
}

std::string KConfigGroup::text() const
{
    std::string all;
    for (const auto &line : m_lines) {
        if (&line != &m_lines.front())
            all += '\n';
        all += line;
    }
    return all;
}

bool KConfigGroup::isHeader(std::size_t index) const
{
    const auto line = trimmed(m_lines[index]);
    if (!line.starts_with(m_header))
        return false;
    const auto rest = line.substr(m_header.size());
    return !rest.starts_with('[') || rest.starts_with("[$");
}

bool KConfigGroup::exists() const { return lastHeader() != nowhere; }

std::size_t KConfigGroup::lastHeader() const
{
    for (auto index = m_lines.size(); index-- > 0;) {
        if (isHeader(index))
            return index;
    }
    return nowhere;
}

std::size_t KConfigGroup::find(std::string_view key) const
{
    auto found = nowhere;
    bool isInside = false;
    for (std::size_t index = 0; index < m_lines.size(); ++index) {
        if (startsGroup(m_lines[index]))
            isInside = isHeader(index);
        else if (isInside && isLineOf(m_lines[index], key))
            found = index;
    }
    return found;
}

bool KConfigGroup::isImmutable(std::string_view key) const
{
    bool isInside = false;
    bool isBeforeGroups = true;
    for (std::size_t index = 0; index < m_lines.size(); ++index) {
        const std::string_view line = m_lines[index];
        if (startsGroup(line)) {
            const bool isOfFile = isBeforeGroups && trimmed(line).starts_with("[$");
            isBeforeGroups = isBeforeGroups && isOfFile;
            isInside = !isOfFile && isHeader(index);
            if ((isOfFile || isInside) && hasOption(line, 'i'))
                return true;
        } else if (isInside && isLineOf(line, key) && hasOption(nameOf(line), 'i')) {
            return true;
        }
    }
    return false;
}

std::optional<std::string> KConfigGroup::line(std::string_view key) const
{
    const auto index = find(key);
    return index == nowhere ? std::nullopt : std::optional(m_lines[index]);
}

std::optional<std::string> KConfigGroup::value(std::string_view key) const
{
    const auto whole = line(key);
    if (!whole || hasOption(nameOf(*whole), 'd') || whole->find('=') == std::string::npos)
        return std::nullopt;
    return std::string(trimmed(std::string_view(*whole).substr(whole->find('=') + 1)));
}

std::size_t KConfigGroup::lastUsedLine(std::size_t header) const
{
    auto last = header;
    for (auto index = header + 1; index < m_lines.size() && !startsGroup(m_lines[index]); ++index) {
        if (!trimmed(m_lines[index]).empty())
            last = index;
    }
    return last;
}

void KConfigGroup::makeGroup()
{
    const auto end = m_lines.end() - (m_lines.back().empty() ? 1 : 0);
    const std::string lineEnd = m_lines.front().ends_with('\r') ? "\r" : "";
    if (end == m_lines.begin())
        m_lines.insert(end, m_header + lineEnd);
    else
        m_lines.insert(end, {lineEnd, m_header + lineEnd});
}

void KConfigGroup::setLine(std::string_view key, const std::optional<std::string> &line)
{
    const auto index = find(key);
    if (index != nowhere && line) {
        m_lines[index] = *line;
    } else if (index != nowhere) {
        m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(index));
    } else if (line) {
        if (!exists())
            makeGroup();
        m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(lastUsedLine(lastHeader()) + 1), *line);
    }
}

void KConfigGroup::setValue(std::string_view key, std::string_view value)
{
    const auto index = find(key);
    const auto header = lastHeader();
    const auto &model = index != nowhere ? m_lines[index] : header != nowhere ? m_lines[header] : m_lines.front();
    const std::string lineEnd = model.ends_with('\r') ? "\r" : "";
    setLine(key, std::string(key) + "=" + std::string(value) + lineEnd);
}

void KConfigGroup::removeIfEmpty()
{
    const auto header = lastHeader();
    if (header == nowhere || lastUsedLine(header) != header)
        return;
    const bool hasBlankBefore = header > 0 && trimmed(m_lines[header - 1]).empty();
    const auto first = m_lines.begin() + static_cast<std::ptrdiff_t>(header);
    m_lines.erase(first - (hasBlankBefore ? 1 : 0), first + 1);
}

} // namespace ambertide
