#include "adapters/linux/tray/DBusMenuObject.h"

#include "adapters/linux/bus/SdBusReader.h"

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <span>
#include <utility>

namespace ambertide {

namespace {

constexpr char interface[] = "com.canonical.dbusmenu";
/// Asked or told about in one call; more could only be meant to hold the menu up.
constexpr std::size_t mostEntries = 256;

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
        if (!menu.m_items.has(parent))
            return refuse(error);
        sd_bus_message *reply = nullptr;
        if (const int result = sd_bus_message_new_method_return(call, &reply); result < 0)
            return result;
        const SdBusMessage owner(reply);
        sd_bus_message_append(reply, "u", menu.m_revision);
        menu.m_items.appendLayout(reply, parent, depth);
        return sd_bus_send(nullptr, reply, nullptr);
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
        menu.m_items.appendGroup(reply, [wanted](std::int32_t identifier) {
            return wanted.empty() || std::ranges::find(wanted, identifier) != wanted.end();
        });
        return sd_bus_send(nullptr, reply, nullptr);
    }

    static int getProperty(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        std::int32_t identifier = 0;
        if (const int result = sd_bus_message_read_basic(call, 'i', &identifier); result < 0)
            return result;
        const auto name = SdBusReader(call).text();
        const auto &items = self(context).m_items;
        if (!name || !items.hasProperty(identifier, *name))
            return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such property");
        sd_bus_message *reply = nullptr;
        if (const int result = sd_bus_message_new_method_return(call, &reply); result < 0)
            return result;
        const SdBusMessage owner(reply);
        items.appendProperty(reply, identifier, *name);
        return sd_bus_send(nullptr, reply, nullptr);
    }

    /// Reads one event and performs it once the caller has been answered. False for an unknown item, nothing for a
    /// malformed event.
    static std::optional<bool> takeEvent(sd_bus_message *call, SdBusReader &reader, DBusMenuObject &menu,
                                         std::int32_t &identifier)
    {
        std::uint32_t time = 0;
        const bool hasIdentifier = sd_bus_message_read_basic(call, 'i', &identifier) > 0;
        const auto event = hasIdentifier ? reader.text() : std::nullopt;
        if (!event || !reader.skip() || sd_bus_message_read_basic(call, 'u', &time) <= 0)
            return std::nullopt;
        if (event == "clicked")
            menu.m_session.afterMessage([&menu, identifier] { menu.activate(identifier); });
        return menu.m_items.has(identifier);
    }

    static int event(sd_bus_message *call, void *context, sd_bus_error *error)
    {
        SdBusReader reader(call);
        std::int32_t identifier = 0;
        const auto isKnown = takeEvent(call, reader, self(context), identifier);
        if (!isKnown)
            return -EINVAL;
        return *isKnown ? sd_bus_reply_method_return(call, "") : refuse(error);
    }

    static int eventGroup(sd_bus_message *call, void *context, sd_bus_error *)
    {
        SdBusReader reader(call);
        std::vector<std::int32_t> unknown;
        if (const int result = sd_bus_message_enter_container(call, 'a', "(isvu)"); result < 0)
            return result;
        for (std::size_t count = 0; count < mostEntries; ++count) {
            if (sd_bus_message_enter_container(call, 'r', "isvu") <= 0)
                break;
            std::int32_t identifier = 0;
            const auto isKnown = takeEvent(call, reader, self(context), identifier);
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
        std::ranges::copy_if(readIdentifiers(call), std::back_inserter(unknown),
                             [context](std::int32_t identifier) { return !self(context).m_items.has(identifier); });
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
    if (m_items.replace(std::move(items)))
        sendLayoutUpdated();
    else
        sendStates();
}

void DBusMenuObject::sendLayoutUpdated()
{
    ++m_revision;
    sd_bus_message *signal = nullptr;
    if (m_session.bus() == nullptr ||
        sd_bus_message_new_signal(m_session.bus(), &signal, path, interface, "LayoutUpdated") < 0)
        return;
    const SdBusMessage owner(signal);
    sd_bus_message_append(signal, "ui", m_revision, DBusMenuItems::root);
    m_session.send(owner);
}

/// Some hosts close an open menu when its layout is said to have changed.
void DBusMenuObject::sendStates()
{
    sd_bus_message *signal = nullptr;
    if (m_session.bus() == nullptr ||
        sd_bus_message_new_signal(m_session.bus(), &signal, path, interface, "ItemsPropertiesUpdated") < 0)
        return;
    const SdBusMessage owner(signal);
    m_items.appendGroup(signal, [this](std::int32_t identifier) { return m_items.hasProperty(identifier, "enabled"); });
    sd_bus_message_append(signal, "a(ias)", 0);
    m_session.send(owner);
}

void DBusMenuObject::activate(std::int32_t identifier)
{
    const auto *item = m_items.find(identifier);
    if (item == nullptr || !item->isEnabled || !item->activate)
        return;
    const auto activate = item->activate; // which may replace the items
    activate();
}

} // namespace ambertide
