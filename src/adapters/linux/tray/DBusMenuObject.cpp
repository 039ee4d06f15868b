#include "adapters/linux/tray/DBusMenuObject.h"

#include "adapters/linux/bus/SdBusObject.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace ambertide {

namespace {

constexpr char interface[] = "com.canonical.dbusmenu";
/// Entries of one call that are looked at; more can only be meant to keep the menu busy.
constexpr std::size_t mostEntries = 256;
constexpr char noSuchItem[] = "There is no such item";

struct MenuEvent
{
    std::int32_t identifier;
    bool isClick;
};

/// Nothing when malformed.
std::optional<MenuEvent> readEvent(SdBusReader &call)
{
    const auto identifier = call.int32();
    const auto kind = identifier ? call.text() : std::nullopt;
    if (!kind || !call.skip() || !call.uint32())
        return std::nullopt;
    return MenuEvent{*identifier, kind == "clicked"};
}

/// Nothing when malformed.
std::optional<std::vector<std::int32_t>> readIdentifiers(SdBusReader &call)
{
    std::vector<std::int32_t> identifiers;
    const bool isRead = call.array("i", [&] {
        const auto identifier = call.int32();
        if (identifier && identifiers.size() < mostEntries)
            identifiers.push_back(*identifier);
        return identifier.has_value();
    });
    return isRead ? std::optional(std::move(identifiers)) : std::nullopt;
}

/// `(ia{sv}av)`, of an entry or the root.
void writeLayout(SdBusWriter &message, const DBusMenuItems &items, std::int32_t identifier,
                 const std::vector<std::int32_t> &children)
{
    message.container('r', "ia{sv}av", [&] {
        message.add(identifier, items.properties(identifier));
        message.container('a', "v", [&] {
            for (const auto child : children)
                message.container('v', "(ia{sv}av)", [&] { writeLayout(message, items, child, {}); });
        });
    });
}

/// `a(ia{sv})`.
void writeProperties(SdBusWriter &message, const DBusMenuItems &items, const std::vector<std::int32_t> &identifiers)
{
    message.container('a', "(ia{sv})", [&] {
        for (const auto identifier : identifiers)
            message.container('r', "ia{sv}", [&] { message.add(identifier, items.properties(identifier)); });
    });
}

} // namespace

struct DBusMenuObject::Members
{
    static const sd_bus_vtable vtable[];

    static const char *getLayout(const DBusMenuObject &menu, SdBusReader &call, SdBusWriter &reply)
    {
        const auto parent = call.int32();
        const auto depth = parent ? call.int32() : std::nullopt;
        if (!depth)
            return malformedCall;
        const auto &items = menu.m_items;
        if (!items.has(*parent))
            return noSuchItem;
        const bool hasChildren = *parent == DBusMenuItems::root && *depth != 0;
        reply.add(menu.m_revision);
        writeLayout(reply, items, *parent, hasChildren ? items.identifiers() : std::vector<std::int32_t>());
        return noRefusal;
    }

    /// Of the given items, or of all for an empty list.
    static const char *getGroupProperties(const DBusMenuObject &menu, SdBusReader &call, SdBusWriter &reply)
    {
        const auto wanted = readIdentifiers(call);
        if (!wanted)
            return malformedCall;
        auto identifiers = menu.m_items.identifiers();
        identifiers.insert(identifiers.begin(), DBusMenuItems::root);
        std::erase_if(identifiers, [&wanted](std::int32_t identifier) {
            return !wanted->empty() && std::ranges::find(*wanted, identifier) == wanted->end();
        });
        writeProperties(reply, menu.m_items, identifiers);
        return noRefusal;
    }

    static const char *getProperty(const DBusMenuObject &menu, SdBusReader &call, SdBusWriter &reply)
    {
        const auto identifier = call.int32();
        const auto name = identifier ? call.text() : std::nullopt;
        if (!name)
            return malformedCall;
        const auto properties = menu.m_items.properties(*identifier);
        const auto found = properties.find(*name);
        if (found == properties.end())
            return "There is no such property";
        reply.add(found->second);
        return noRefusal;
    }

    static const char *event(DBusMenuObject &menu, SdBusReader &call, SdBusWriter &)
    {
        const auto event = readEvent(call);
        if (!event)
            return malformedCall;
        return perform(menu, *event) ? noRefusal : noSuchItem;
    }

    /// The reply names the unknown items.
    static const char *eventGroup(DBusMenuObject &menu, SdBusReader &call, SdBusWriter &reply)
    {
        std::vector<std::int32_t> unknown;
        std::size_t count = 0;
        const auto takeEvent = [&] {
            const auto event = readEvent(call);
            if (event && count++ < mostEntries && !perform(menu, *event))
                unknown.push_back(event->identifier);
            return event.has_value();
        };
        if (!call.array("(isvu)", [&] { return call.container('r', "isvu", takeEvent); }))
            return malformedCall;
        reply.add(unknown);
        return noRefusal;
    }

    /// The layout is always up to date.
    static const char *aboutToShow(const DBusMenuObject &, SdBusReader &, SdBusWriter &reply)
    {
        reply.add(false);
        return noRefusal;
    }

    /// The reply names the items that have changed, of which there are none, and the unknown ones.
    static const char *aboutToShowGroup(const DBusMenuObject &menu, SdBusReader &call, SdBusWriter &reply)
    {
        auto identifiers = readIdentifiers(call);
        if (!identifiers)
            return malformedCall;
        std::erase_if(*identifiers, [&menu](std::int32_t identifier) { return menu.m_items.has(identifier); });
        reply.add(std::vector<std::int32_t>(), *identifiers);
        return noRefusal;
    }

    static void version(const DBusMenuObject &, SdBusWriter &value) { value.add(std::uint32_t{3}); }

    static void status(const DBusMenuObject &, SdBusWriter &value) { value.add("normal"); }

private:
    /// Activates the item that was clicked, once the caller has been answered. False for an unknown item.
    static bool perform(DBusMenuObject &menu, const MenuEvent &event)
    {
        if (event.isClick)
            menu.m_session.afterMessage([&menu, event] { menu.activate(event.identifier); });
        return menu.m_items.has(event.identifier);
    }
};

const sd_bus_vtable DBusMenuObject::Members::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Version", "u", handleRead<version>, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", handleRead<status>, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", handleCall<getLayout>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", handleCall<getGroupProperties>,
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetProperty", "is", "v", handleCall<getProperty>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Event", "isvu", "", handleCall<event>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", handleCall<eventGroup>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShow", "i", "b", handleCall<aboutToShow>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", handleCall<aboutToShowGroup>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

DBusMenuObject::DBusMenuObject(DBusSession &session)
    : m_session(session), m_object(session.exportObject(path, interface, Members::vtable, this))
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
    m_session.send(SdBusWriter::signal(m_session.bus(), path, interface, "LayoutUpdated")
                       .add(m_revision, DBusMenuItems::root)
                       .take());
}

/// Sent in place of LayoutUpdated, at which some hosts close an open menu.
void DBusMenuObject::sendStates()
{
    auto signal = SdBusWriter::signal(m_session.bus(), path, interface, "ItemsPropertiesUpdated");
    writeProperties(signal, m_items, m_items.identifiers());
    signal.container('a', "(ias)", [] {});
    m_session.send(signal.take());
}

void DBusMenuObject::activate(std::int32_t identifier)
{
    const auto *item = m_items.find(identifier);
    if (item == nullptr || !item->isEnabled || !item->activate)
        return;
    const auto activate = item->activate; // copied, since it may replace the items
    activate();
}

} // namespace ambertide
