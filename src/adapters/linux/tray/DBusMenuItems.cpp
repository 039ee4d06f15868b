#include "adapters/linux/tray/DBusMenuItems.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace ambertide {

namespace {

/// The underscore marks the access key.
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

void DBusMenuItems::appendLayout(sd_bus_message *message, std::int32_t parent, std::int32_t depth) const
{
    sd_bus_message_open_container(message, 'r', "ia{sv}av");
    sd_bus_message_append(message, "i", parent);
    appendProperties(message, parent);
    sd_bus_message_open_container(message, 'a', "v");
    const bool withChildren = parent == root && depth != 0;
    for (auto identifier = m_first; withChildren && find(identifier) != nullptr; ++identifier) {
        sd_bus_message_open_container(message, 'v', "(ia{sv}av)");
        appendLayout(message, identifier, 0);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
}

void DBusMenuItems::appendGroup(sd_bus_message *message, const std::function<bool(std::int32_t)> &isWanted) const
{
    const auto append = [&](std::int32_t identifier) {
        if (!isWanted(identifier))
            return;
        sd_bus_message_open_container(message, 'r', "ia{sv}");
        sd_bus_message_append(message, "i", identifier);
        appendProperties(message, identifier);
        sd_bus_message_close_container(message);
    };
    sd_bus_message_open_container(message, 'a', "(ia{sv})");
    append(root);
    for (auto identifier = m_first; find(identifier) != nullptr; ++identifier)
        append(identifier);
    sd_bus_message_close_container(message);
}

bool DBusMenuItems::hasProperty(std::int32_t identifier, std::string_view name) const
{
    const auto *item = find(identifier);
    if (item == nullptr)
        return identifier == root && name == "children-display";
    return item->text.empty() ? name == "type" : name == "label" || name == "enabled";
}

void DBusMenuItems::appendProperty(sd_bus_message *message, std::int32_t identifier, std::string_view name) const
{
    const auto *item = find(identifier);
    if (name == "enabled")
        sd_bus_message_append(message, "v", "b", static_cast<int>(item->isEnabled));
    else
        sd_bus_message_append(message, "v", "s",
                              name == "label"  ? labelOf(*item).c_str()
                              : name == "type" ? "separator"
                                               : "submenu");
}

void DBusMenuItems::appendProperties(sd_bus_message *message, std::int32_t identifier) const
{
    sd_bus_message_open_container(message, 'a', "{sv}");
    for (const char *name : {"children-display", "type", "label", "enabled"}) {
        if (!hasProperty(identifier, name))
            continue;
        sd_bus_message_open_container(message, 'e', "sv");
        sd_bus_message_append(message, "s", name);
        appendProperty(message, identifier, name);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
}

} // namespace ambertide
