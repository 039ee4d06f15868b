#include "adapters/linux/tray/StatusNotifierItem.h"

#include "adapters/linux/bus/SdBusReader.h"

#include <QCoreApplication>
#include <QtEndian>

#include <unistd.h>

#include <cstdint>
#include <utility>

namespace ambertide {

namespace {

constexpr char itemPath[] = "/StatusNotifierItem";
constexpr char itemInterface[] = "org.kde.StatusNotifierItem";
constexpr char watcher[] = "org.kde.StatusNotifierWatcher";
constexpr char watcherPath[] = "/StatusNotifierWatcher";

constexpr char nothing[] = "";
constexpr char category[] = "ApplicationStatus";
constexpr char identifier[] = "me.tovanu.Ambertide";
constexpr char status[] = "Active";

void appendImage(sd_bus_message *reply, const QImage &image)
{
    // ARGB, not premultiplied, in network byte order.
    auto pixels = image.convertToFormat(QImage::Format_ARGB32);
    const auto size = static_cast<std::size_t>(pixels.sizeInBytes());
    qToBigEndian<quint32>(pixels.constBits(), pixels.sizeInBytes() / qsizetype{sizeof(quint32)}, pixels.bits());
    sd_bus_message_open_container(reply, 'r', "iiay");
    sd_bus_message_append(reply, "ii", pixels.width(), pixels.height());
    sd_bus_message_append_array(reply, 'y', pixels.constBits(), size);
    sd_bus_message_close_container(reply);
}

} // namespace

struct StatusNotifierItem::Members
{
    static const sd_bus_vtable vtable[];

    static StatusNotifierItem &self(void *context) { return *static_cast<StatusNotifierItem *>(context); }

    template <const char *text>
    static int constant(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *,
                        sd_bus_error *)
    {
        return sd_bus_message_append(reply, "s", text);
    }

    static int title(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *context,
                     sd_bus_error *)
    {
        return sd_bus_message_append(reply, "s", self(context).m_name.c_str());
    }

    static int windowIdentifier(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *,
                                sd_bus_error *)
    {
        return sd_bus_message_append(reply, "i", 0);
    }

    static int themePath(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *context,
                         sd_bus_error *)
    {
        return sd_bus_message_append(reply, "s", self(context).m_artwork.themePath().c_str());
    }

    static int pixmaps(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *context,
                       sd_bus_error *)
    {
        auto &item = self(context);
        if (item.m_images.empty())
            item.m_images = item.m_artwork.images();
        sd_bus_message_open_container(reply, 'a', "(iiay)");
        for (const auto &image : item.m_images)
            appendImage(reply, image);
        return sd_bus_message_close_container(reply);
    }

    static int noPixmaps(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *,
                         sd_bus_error *)
    {
        return sd_bus_message_append(reply, "a(iiay)", 0);
    }

    /// The text may hold markup.
    static int toolTip(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *context,
                       sd_bus_error *)
    {
        const auto text = QString::fromStdString(self(context).m_toolTip).toHtmlEscaped().toStdString();
        return sd_bus_message_append(reply, "(sa(iiay)ss)", nothing, 0, self(context).m_name.c_str(), text.c_str());
    }

    static int itemIsMenu(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *,
                          sd_bus_error *)
    {
        return sd_bus_message_append(reply, "b", 0);
    }

    static int menu(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply, void *, sd_bus_error *)
    {
        return sd_bus_message_append(reply, "o", DBusMenuObject::path);
    }

    static int activate(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &item = self(context);
        QPoint place;
        if (const int result = sd_bus_message_read(call, "ii", &place.rx(), &place.ry()); result < 0)
            return result;
        // Panels that do not know the place send zeros.
        const auto told = place.isNull() ? std::nullopt : std::optional(place);
        item.m_session.afterMessage([&item, told] { item.m_callbacks.activated(told); });
        return sd_bus_reply_method_return(call, "");
    }

    static int ignore(sd_bus_message *call, void *, sd_bus_error *) { return sd_bus_reply_method_return(call, ""); }

    static int noteRegistration(sd_bus_message *reply, void *context, sd_bus_error *)
    {
        const auto *error = sd_bus_message_get_error(reply);
        const bool isAbsent = sd_bus_error_has_name(error, SD_BUS_ERROR_NAME_HAS_NO_OWNER) != 0 ||
                              sd_bus_error_has_name(error, SD_BUS_ERROR_SERVICE_UNKNOWN) != 0;
        const auto presence = error == nullptr ? Presence::Shown : isAbsent ? Presence::Nowhere : Presence::Pending;
        auto &item = self(context);
        item.m_session.afterMessage([&item, presence] { item.setPresence(presence); });
        return 0;
    }

    static int noteWatcher(sd_bus_message *signal, void *context, sd_bus_error *)
    {
        const char *owner = nullptr;
        if (sd_bus_message_read(signal, "sss", nullptr, nullptr, &owner) <= 0)
            return 0;
        auto &item = self(context);
        item.m_session.afterMessage([&item, isThere = *owner != '\0'] {
            item.m_registration.release();
            item.setPresence(isThere ? Presence::Pending : Presence::Nowhere);
            if (isThere)
                item.announce();
        });
        return 0;
    }
};

const sd_bus_vtable StatusNotifierItem::Members::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Category", "s", constant<category>, 0, 0),
    SD_BUS_PROPERTY("Id", "s", constant<identifier>, 0, 0),
    SD_BUS_PROPERTY("Title", "s", title, 0, 0),
    SD_BUS_PROPERTY("Status", "s", constant<status>, 0, 0),
    SD_BUS_PROPERTY("WindowId", "i", windowIdentifier, 0, 0),
    SD_BUS_PROPERTY("IconThemePath", "s", themePath, 0, 0),
    SD_BUS_PROPERTY("IconName", "s", constant<TrayArtwork::iconName>, 0, 0),
    SD_BUS_PROPERTY("IconPixmap", "a(iiay)", pixmaps, 0, 0),
    SD_BUS_PROPERTY("OverlayIconName", "s", constant<nothing>, 0, 0),
    SD_BUS_PROPERTY("OverlayIconPixmap", "a(iiay)", noPixmaps, 0, 0),
    SD_BUS_PROPERTY("AttentionIconName", "s", constant<nothing>, 0, 0),
    SD_BUS_PROPERTY("AttentionIconPixmap", "a(iiay)", noPixmaps, 0, 0),
    SD_BUS_PROPERTY("AttentionMovieName", "s", constant<nothing>, 0, 0),
    SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", toolTip, 0, 0),
    SD_BUS_PROPERTY("ItemIsMenu", "b", itemIsMenu, 0, 0),
    SD_BUS_PROPERTY("Menu", "o", menu, 0, 0),
    SD_BUS_METHOD("Activate", "ii", "", activate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("SecondaryActivate", "ii", "", activate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ContextMenu", "ii", "", ignore, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Scroll", "is", "", ignore, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("NewTitle", "", 0),
    SD_BUS_SIGNAL("NewIcon", "", 0),
    SD_BUS_SIGNAL("NewAttentionIcon", "", 0),
    SD_BUS_SIGNAL("NewOverlayIcon", "", 0),
    SD_BUS_SIGNAL("NewToolTip", "", 0),
    SD_BUS_SIGNAL("NewStatus", "s", 0),
    SD_BUS_VTABLE_END,
};

StatusNotifierItem::StatusNotifierItem(DBusSession &session, TrayArtwork artwork, std::string name, Click click,
                                       Callbacks callbacks)
    : m_session(session), m_artwork(std::move(artwork)), m_name(std::move(name)),
      m_busName(std::string(itemInterface) + '-' + std::to_string(getpid()) + "-1"), m_click(click),
      m_callbacks(std::move(callbacks)), m_presence(session.bus() != nullptr ? Presence::Pending : Presence::Nowhere),
      m_menu(session)
{
    setMenu({});
    m_object = session.install([this](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        sd_bus_add_object_vtable(bus, &slot, itemPath, itemInterface, Members::vtable, this);
        return SdBusSlot(slot);
    });
    m_ownedName = session.install([this](sd_bus *bus) {
        const auto ignoreReply = [](sd_bus_message *, void *, sd_bus_error *) { return 0; };
        sd_bus_slot *slot = nullptr;
        sd_bus_request_name_async(bus, &slot, m_busName.c_str(), 0, ignoreReply, nullptr);
        return SdBusSlot(slot);
    });
    m_watcherChanges = session.install([this](sd_bus *bus) {
        return addMatch(bus,
                        std::string("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                                    "member='NameOwnerChanged',arg0='") +
                            watcher + "'",
                        Members::noteWatcher, this);
    });
    announce();
}

void StatusNotifierItem::announce()
{
    m_registration = m_session.install([this](sd_bus *bus) {
        sd_bus_message *call = nullptr;
        sd_bus_slot *slot = nullptr;
        if (sd_bus_message_new_method_call(bus, &call, watcher, watcherPath, watcher, "RegisterStatusNotifierItem") < 0)
            return SdBusSlot();
        const SdBusMessage owner(call);
        sd_bus_message_append(call, "s", m_busName.c_str());
        sd_bus_message_set_auto_start(call, 0);
        // A panel that is stuck may still come round.
        constexpr auto forEver = UINT64_MAX;
        sd_bus_call_async(bus, &slot, call, Members::noteRegistration, this, forEver);
        return SdBusSlot(slot);
    });
}

void StatusNotifierItem::setPresence(Presence presence)
{
    if (std::exchange(m_presence, presence) != presence)
        m_callbacks.presenceChanged();
}

void StatusNotifierItem::setMenu(std::vector<TrayMenuItem> items)
{
    if (m_click == Click::OpensMenu) {
        const auto text = QCoreApplication::translate("ambertide::TrayIcon", "Open %1");
        items.insert(items.begin(), {{text.arg(QString::fromStdString(m_name)).toStdString(), true,
                                      [this] { m_callbacks.activated(std::nullopt); }},
                                     {}});
    }
    m_menu.setItems(std::move(items));
}

void StatusNotifierItem::setToolTip(std::string text)
{
    if (text == m_toolTip)
        return;
    m_toolTip = std::move(text);
    emitSignal("NewToolTip");
}

void StatusNotifierItem::emitSignal(const char *member)
{
    sd_bus_message *signal = nullptr;
    if (m_session.bus() != nullptr &&
        sd_bus_message_new_signal(m_session.bus(), &signal, itemPath, itemInterface, member) >= 0)
        m_session.send(SdBusMessage(signal));
}

} // namespace ambertide
