#include "adapters/linux/tray/DBusMenuItems.h"

#include <algorithm>
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
    const bool isNew = !std::ranges::equal(items, m_items, {}, &TrayMenuItem::text, &TrayMenuItem::text);
    if (isNew)
        m_first += static_cast<std::int32_t>(m_items.size());
    m_items = std::move(items);
    return isNew;
}

const TrayMenuItem *DBusMenuItems::find(std::int32_t identifier) const
{
    const auto position = static_cast<std::size_t>(std::int64_t{identifier} - m_first); // huge when negative
    return position < m_items.size() ? &m_items[position] : nullptr;
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
