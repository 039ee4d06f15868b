#include "adapters/linux/tray/StatusNotifierItem.h"

#include "adapters/linux/bus/SdBusObject.h"

#include <QCoreApplication>
#include <QtEndian>

#include <unistd.h>

#include <span>
#include <utility>

namespace ambertide {

namespace {

constexpr char itemPath[] = "/StatusNotifierItem";
constexpr char itemInterface[] = "org.kde.StatusNotifierItem";
constexpr char watcher[] = "org.kde.StatusNotifierWatcher";
constexpr char watcherPath[] = "/StatusNotifierWatcher";

/// Pixels as ARGB, not premultiplied, in network byte order.
void writeImage(SdBusWriter &value, const QImage &image)
{
    auto pixels = image.convertToFormat(QImage::Format_ARGB32);
    const auto size = pixels.sizeInBytes();
    qToBigEndian<quint32>(pixels.constBits(), size / qsizetype{sizeof(quint32)}, pixels.bits());
    value.container('r', "iiay", [&] {
        value.add(pixels.width(), pixels.height(), std::span(pixels.constBits(), static_cast<std::size_t>(size)));
    });
}

} // namespace

struct StatusNotifierItem::Members
{
    static const sd_bus_vtable vtable[];

    static void category(const StatusNotifierItem &, SdBusWriter &value) { value.add("ApplicationStatus"); }
    static void identifier(const StatusNotifierItem &, SdBusWriter &value) { value.add("me.tovanu.Ambertide"); }
    static void title(const StatusNotifierItem &item, SdBusWriter &value) { value.add(item.m_name); }
    static void status(const StatusNotifierItem &, SdBusWriter &value) { value.add("Active"); }
    static void iconName(const StatusNotifierItem &, SdBusWriter &value) { value.add(TrayArtwork::iconName); }
    static void itemIsMenu(const StatusNotifierItem &, SdBusWriter &value) { value.add(false); }
    static void menu(const StatusNotifierItem &, SdBusWriter &value) { value.objectPath(DBusMenuObject::path); }

    static void themePath(const StatusNotifierItem &item, SdBusWriter &value) { value.add(item.m_artwork.themePath()); }

    static void pixmaps(StatusNotifierItem &item, SdBusWriter &value)
    {
        if (item.m_images.empty())
            item.m_images = item.m_artwork.images();
        value.container('a', "(iiay)", [&] {
            for (const auto &image : item.m_images)
                writeImage(value, image);
        });
    }

    /// Hosts take the text for markup, so it is escaped.
    static void toolTip(const StatusNotifierItem &item, SdBusWriter &value)
    {
        const auto text = QString::fromStdString(item.m_toolTip).toHtmlEscaped().toStdString();
        value.container('r', "sa(iiay)ss",
                        [&] { value.add("").container('a', "(iiay)", [] {}).add(item.m_name, text); });
    }

    /// Also serves hosts that cannot draw the menu and ask the application to do so: the panel has all that people need
    /// of it.
    static const char *activate(StatusNotifierItem &item, SdBusReader &call, SdBusWriter &)
    {
        const auto x = call.int32();
        const auto y = x ? call.int32() : std::nullopt;
        if (!y)
            return malformedCall;
        // Panels that do not know the place of the click send zeros.
        const auto place = *x == 0 && *y == 0 ? std::nullopt : std::optional(QPoint(*x, *y));
        item.m_session.afterMessage([&item, place] { item.m_callbacks.activated(place); });
        return noRefusal;
    }

    static const char *ignore(StatusNotifierItem &, SdBusReader &, SdBusWriter &) { return noRefusal; }
};

const sd_bus_vtable StatusNotifierItem::Members::vtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Category", "s", handleRead<category>, 0, 0),
    SD_BUS_PROPERTY("Id", "s", handleRead<identifier>, 0, 0),
    SD_BUS_PROPERTY("Title", "s", handleRead<title>, 0, 0),
    SD_BUS_PROPERTY("Status", "s", handleRead<status>, 0, 0),
    SD_BUS_PROPERTY("IconThemePath", "s", handleRead<themePath>, 0, 0),
    SD_BUS_PROPERTY("IconName", "s", handleRead<iconName>, 0, 0),
    SD_BUS_PROPERTY("IconPixmap", "a(iiay)", handleRead<pixmaps>, 0, 0),
    SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", handleRead<toolTip>, 0, 0),
    SD_BUS_PROPERTY("ItemIsMenu", "b", handleRead<itemIsMenu>, 0, 0),
    SD_BUS_PROPERTY("Menu", "o", handleRead<menu>, 0, 0),
    SD_BUS_METHOD("Activate", "ii", "", handleCall<activate>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("SecondaryActivate", "ii", "", handleCall<activate>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ContextMenu", "ii", "", handleCall<activate>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Scroll", "is", "", handleCall<ignore>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("NewToolTip", "", 0),
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
    m_object = session.exportObject(itemPath, itemInterface, Members::vtable, this);
    m_ownedName = session.requestName(m_busName, [](sd_bus_message *) {});
    m_watcherChanges = session.watchName(watcher, [this](bool isOwned) {
        m_registration.release();
        setPresence(isOwned ? Presence::Pending : Presence::Nowhere);
        if (isOwned)
            announce();
    });
    announce();
}

void StatusNotifierItem::announce()
{
    const auto registerItem = [this](sd_bus *bus) {
        return SdBusWriter::call(bus, watcher, watcherPath, watcher, "RegisterStatusNotifierItem")
            .withoutStarting()
            .add(m_busName)
            .take();
    };
    m_registration = m_session.call(registerItem, [this](sd_bus_message *reply) { noteRegistration(reply); });
}

void StatusNotifierItem::noteRegistration(sd_bus_message *reply)
{
    // Some desktops have a watcher's name on the bus without its object.
    const auto presence = sd_bus_message_get_error(reply) == nullptr ? Presence::Shown : Presence::Nowhere;
    m_session.afterMessage([this, presence] { setPresence(presence); });
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
    m_session.send(SdBusWriter::signal(m_session.bus(), itemPath, itemInterface, member).take());
}

} // namespace ambertide
