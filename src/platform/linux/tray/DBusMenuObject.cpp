#include "platform/linux/tray/DBusMenuObject.h"

#include "platform/linux/SdBusReader.h"

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

namespace ambertide {

namespace {

constexpr char interface[] = "com.canonical.dbusmenu";
constexpr std::int32_t rootIdentifier = 0;
/// Asked or told about in one call; more could only be meant to hold the menu up.
constexpr std::size_t mostEntries = 256;

/// The underscore marks the access key.
std::string labelOf(const TrayMenuItem &item)
{
    std::string label;
    for (const char letter : item.text)
        label.append(letter == '_' ? 2 : 1, letter);
    return label;
}

/// The properties that differ from their defaults.
void appendProperties(sd_bus_message *reply, const TrayMenuItem *item)
{
    sd_bus_message_open_container(reply, 'a', "{sv}");
    if (item == nullptr) {
        sd_bus_message_append(reply, "{sv}", "children-display", "s", "submenu");
    } else if (item->text.empty()) {
        sd_bus_message_append(reply, "{sv}", "type", "s", "separator");
    } else {
        sd_bus_message_append(reply, "{sv}", "label", "s", labelOf(*item).c_str());
        sd_bus_message_append(reply, "{sv}", "enabled", "b", static_cast<int>(item->isEnabled));
    }
    sd_bus_message_close_container(reply);
}

std::span<const std::int32_t> readIdentifiers(sd_bus_message *call)
{
    const void *identifiers = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(call, 'i', &identifiers, &size) <= 0)
        return {};
    return {static_cast<const std::int32_t *>(identifiers), std::min(size / sizeof(std::int32_t), mostEntries)};
}

int refuse(sd_bus_error *error) { return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such item"); }

} // namespace

struct DBusMenuObject::Methods
{
    static const sd_bus_vtable vtable[];

    static DBusMenuObject &self(void *context) { return *static_cast<DBusMenuObject *>(context); }

    static int getLayout(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        const auto &menu = self(context);
        std::int32_t parent = 0;
        std::int32_t depth = 0;
        if (const int result = sd_bus_message_read(call, "ii", &parent, &depth); result < 0)
            return result;
        if (parent != rootIdentifier && menu.find(parent) == nullptr)
            return refuse(error);
        sd_bus_message *reply = nullptr;
        if (const int result = sd_bus_message_new_method_return(call, &reply); result < 0)
            return result;
        const SdBusMessage owner(reply);
        sd_bus_message_append(reply, "u", menu.m_revision);
        sd_bus_message_open_container(reply, 'r', "ia{sv}av");
        sd_bus_message_append(reply, "i", parent);
        appendProperties(reply, menu.find(parent));
        sd_bus_message_open_container(reply, 'a', "v");
        auto identifier = menu.m_firstIdentifier;
        for (const auto &item : menu.m_items) {
            if (parent == rootIdentifier && depth != 0)
                appendChild(reply, identifier++, item);
        }
        sd_bus_message_close_container(reply);
        sd_bus_message_close_container(reply);
        return sd_bus_send(nullptr, reply, nullptr);
    }

    static void appendChild(sd_bus_message *reply, std::int32_t identifier, const TrayMenuItem &item)
    {
        sd_bus_message_open_container(reply, 'v', "(ia{sv}av)");
        sd_bus_message_open_container(reply, 'r', "ia{sv}av");
        sd_bus_message_append(reply, "i", identifier);
        appendProperties(reply, &item);
        sd_bus_message_append(reply, "av", 0);
        sd_bus_message_close_container(reply);
        sd_bus_message_close_container(reply);
    }

    /// Of the given items, or of all for an empty list.
    static int getGroupProperties(sd_bus_message *call, void *context, sd_bus_error *)
    {
        const auto &menu = self(context);
        const auto wanted = readIdentifiers(call);
        sd_bus_message *reply = nullptr;
        if (const int result = sd_bus_message_new_method_return(call, &reply); result < 0)
            return result;
        const SdBusMessage owner(reply);
        const auto isWanted = [wanted](std::int32_t identifier) {
            return wanted.empty() || std::ranges::find(wanted, identifier) != wanted.end();
        };
        const auto append = [&](std::int32_t identifier, const TrayMenuItem *item) {
            if (!isWanted(identifier))
                return;
            sd_bus_message_open_container(reply, 'r', "ia{sv}");
            sd_bus_message_append(reply, "i", identifier);
            appendProperties(reply, item);
            sd_bus_message_close_container(reply);
        };
        sd_bus_message_open_container(reply, 'a', "(ia{sv})");
        append(rootIdentifier, nullptr);
        auto identifier = menu.m_firstIdentifier;
        for (const auto &item : menu.m_items)
            append(identifier++, &item);
        sd_bus_message_close_container(reply);
        return sd_bus_send(nullptr, reply, nullptr);
    }

    static int getProperty(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        std::int32_t identifier = 0;
        if (const int result = sd_bus_message_read_basic(call, 'i', &identifier); result < 0)
            return result;
        const auto name = SdBusReader(call).text();
        const auto *item = self(context).find(identifier);
        if (item != nullptr && item->text.empty() && name == "type")
            return sd_bus_reply_method_return(call, "v", "s", "separator");
        if (item != nullptr && !item->text.empty() && name == "label")
            return sd_bus_reply_method_return(call, "v", "s", labelOf(*item).c_str());
        if (item != nullptr && name == "enabled")
            return sd_bus_reply_method_return(call, "v", "b", static_cast<int>(item->isEnabled));
        if (identifier == rootIdentifier && name == "children-display")
            return sd_bus_reply_method_return(call, "v", "s", "submenu");
        return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such property");
    }

    /// Reads one event and performs it once the caller has been answered. False for an unknown item, nothing for a
    /// malformed event.
    static std::optional<bool> takeEvent(sd_bus_message *call, DBusMenuObject &menu, std::int32_t &identifier)
    {
        SdBusReader reader(call);
        std::uint32_t time = 0;
        const bool hasIdentifier = sd_bus_message_read_basic(call, 'i', &identifier) > 0;
        const auto event = hasIdentifier ? reader.text() : std::nullopt;
        if (!event || !reader.skip() || sd_bus_message_read_basic(call, 'u', &time) <= 0)
            return std::nullopt;
        if (event == "clicked")
            menu.m_session.afterMessage([&menu, identifier] { menu.activate(identifier); });
        return identifier == rootIdentifier || menu.find(identifier) != nullptr;
    }

    static int event(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        std::int32_t identifier = 0;
        const auto isKnown = takeEvent(call, self(context), identifier);
        if (!isKnown)
            return -EINVAL;
        return *isKnown ? sd_bus_reply_method_return(call, "") : refuse(error);
    }

    static int eventGroup(sd_bus_message *call, void *context, sd_bus_error *)
    {
        std::vector<std::int32_t> unknown;
        if (const int result = sd_bus_message_enter_container(call, 'a', "(isvu)"); result < 0)
            return result;
        for (std::size_t count = 0; count < mostEntries; ++count) {
            if (sd_bus_message_enter_container(call, 'r', "isvu") <= 0)
                break;
            std::int32_t identifier = 0;
            const auto isKnown = takeEvent(call, self(context), identifier);
            if (!isKnown || sd_bus_message_exit_container(call) < 0)
                return -EINVAL;
            if (!*isKnown)
                unknown.push_back(identifier);
        }
        return answer(call, {&unknown});
    }

    /// The layout is always up to date.
    static int aboutToShow(sd_bus_message *call, void *, sd_bus_error *)
    {
        return sd_bus_reply_method_return(call, "b", 0);
    }

    static int aboutToShowGroup(sd_bus_message *call, void *context, sd_bus_error *)
    {
        const std::vector<std::int32_t> updated;
        std::vector<std::int32_t> unknown;
        std::ranges::copy_if(readIdentifiers(call), std::back_inserter(unknown), [context](std::int32_t identifier) {
            return identifier != rootIdentifier && self(context).find(identifier) == nullptr;
        });
        return answer(call, {&updated, &unknown});
    }

    static int answer(sd_bus_message *call, std::initializer_list<const std::vector<std::int32_t> *> lists)
    {
        sd_bus_message *reply = nullptr;
        if (const int result = sd_bus_message_new_method_return(call, &reply); result < 0)
            return result;
        const SdBusMessage owner(reply);
        for (const auto *list : lists)
            sd_bus_message_append_array(reply, 'i', list->data(), list->size() * sizeof(std::int32_t));
        return sd_bus_send(nullptr, reply, nullptr);
    }

    static int version(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *,
                       sd_bus_error *)
    {
        return sd_bus_message_append(reply, "u", 3);
    }

    static int status(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *, sd_bus_error *)
    {
        return sd_bus_message_append(reply, "s", "normal");
    }
};

const sd_bus_vtable DBusMenuObject::Methods::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Version", "u", version, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", status, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", getLayout, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", getGroupProperties, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetProperty", "is", "v", getProperty, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Event", "isvu", "", event, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", eventGroup, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShow", "i", "b", aboutToShow, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", aboutToShowGroup, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

DBusMenuObject::DBusMenuObject(DBusSession &session)
    : m_session(session), m_object(session.install([this](sd_bus *bus) {
          sd_bus_slot *slot = nullptr;
          sd_bus_add_object_vtable(bus, &slot, path, interface, Methods::vtable, this);
          return SdBusSlot(slot);
      }))
{
}

void DBusMenuObject::setItems(std::vector<TrayMenuItem> items)
{
    const auto count = static_cast<std::int32_t>(std::min(items.size(), mostEntries));
    items.resize(static_cast<std::size_t>(count));
    if (!std::ranges::equal(items, m_items, {}, &TrayMenuItem::text, &TrayMenuItem::text)) {
        const auto lastStart = std::numeric_limits<std::int32_t>::max() - 2 * static_cast<std::int32_t>(mostEntries);
        const auto next = m_firstIdentifier + static_cast<std::int32_t>(m_items.size());
        m_firstIdentifier = next < lastStart ? next : 1;
    }
    m_items = std::move(items);
    ++m_revision;
    sd_bus_message *signal = nullptr;
    if (m_session.bus() == nullptr ||
        sd_bus_message_new_signal(m_session.bus(), &signal, path, interface, "LayoutUpdated") < 0)
        return;
    const SdBusMessage owner(signal);
    if (sd_bus_message_append(signal, "ui", m_revision, rootIdentifier) >= 0)
        m_session.send(owner);
}

const TrayMenuItem *DBusMenuObject::find(std::int32_t identifier) const
{
    // Identifiers are the first one's successors.
    const auto position = std::int64_t{identifier} - m_firstIdentifier;
    const bool exists = position >= 0 && position < static_cast<std::int64_t>(m_items.size());
    return exists ? &m_items[static_cast<std::size_t>(position)] : nullptr;
}

void DBusMenuObject::activate(std::int32_t identifier)
{
    const auto *item = find(identifier);
    if (item == nullptr || !item->isEnabled || !item->activate)
        return;
    const auto activate = item->activate; // which may replace the items
    activate();
}

} // namespace ambertide
