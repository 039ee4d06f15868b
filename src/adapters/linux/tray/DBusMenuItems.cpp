#include "adapters/linux/tray/DBusMenuItems.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace ambertide {

namespace {

/// A single underscore would mark the access key.
std::string labelOf(const TrayMenuItem &item)
{
    std::string label;
    for (const char letter : item.text)
        label.append(letter == '_' ? 2 : 1, letter);
    return label;
}

} // namespace

bool DBusMenuItems::replace(std::vector<TrayMenuItem> items)
{
    items.resize(std::min(items.size(), mostItems));
    const bool isNew = !std::ranges::equal(items, m_items, {}, &TrayMenuItem::text, &TrayMenuItem::text);
    constexpr auto lastFirst = std::numeric_limits<std::int32_t>::max() - static_cast<std::int32_t>(2 * mostItems);
    if (isNew)
        m_first = m_first < lastFirst ? m_first + static_cast<std::int32_t>(m_items.size()) : root + 1;
    m_items = std::move(items);
    return isNew;
}

const TrayMenuItem *DBusMenuItems::find(std::int32_t identifier) const
{
    const auto position = std::int64_t{identifier} - m_first;
    const bool exists = position >= 0 && position < static_cast<std::int64_t>(m_items.size());
    return exists ? &m_items[static_cast<std::size_t>(position)] : nullptr;
}

std::vector<std::int32_t> DBusMenuItems::identifiers() const
{
    std::vector<std::int32_t> identifiers(m_items.size());
    std::iota(identifiers.begin(), identifiers.end(), m_first);
    return identifiers;
}

UserInfo DBusMenuItems::properties(std::int32_t identifier) const
{
    const auto *item = find(identifier);
    if (item == nullptr)
        return identifier == root ? UserInfo{{"children-display", "submenu"}} : UserInfo{};
    if (item->text.empty())
        return {{"type", "separator"}};
    return {{"label", labelOf(*item)}, {"enabled", item->isEnabled}};
}

} // namespace ambertide
