#include "adapters/linux/tray/XembedTrayIcon.h"

#include "adapters/linux/x11/Selection.h"
#include "adapters/linux/x11/ToolkitConnection.h"

#include <QGuiApplication>
#include <QPixmap>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace ambertide {

namespace {

/// System Tray Protocol Specification: the tray of a screen owns the selection with the screen's number.
std::string traySelection()
{
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0)
        std::free(host);
    return "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
}

} // namespace

XembedTrayIcon::XembedTrayIcon(const TrayArtwork &artwork, std::string name, Callbacks callbacks)
    : m_name(std::move(name)), m_callbacks(std::move(callbacks))
{
    for (const auto &image : artwork.images())
        m_drawing.addPixmap(QPixmap::fromImage(image));
    m_connection = toolkitConnection();
    if (m_connection == nullptr)
        return;
    m_traySelection = atomNamed(m_connection, traySelection());
    m_managerMessage = atomNamed(m_connection, "MANAGER");
    m_trayChange.setSingleShot(true);
    QObject::connect(&m_trayChange, &QTimer::timeout, &m_trayChange, [this] { followTray(); });
    qGuiApp->installNativeEventFilter(this);
    followTray();
}

bool XembedTrayIcon::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<xcb_generic_event_t *>(message);
    constexpr unsigned sentFlag = 0x80;
    const auto kind = event->response_type & ~sentFlag;
    const auto *announced = reinterpret_cast<const xcb_client_message_event_t *>(event);
    const auto *destroyed = reinterpret_cast<const xcb_destroy_notify_event_t *>(event);
    const bool hasCome = kind == XCB_CLIENT_MESSAGE && announced->type == m_managerMessage && announced->format == 32 &&
                         announced->data.data32[1] == m_traySelection;
    const bool hasGone = kind == XCB_DESTROY_NOTIFY && destroyed->window == m_tray;
    if (hasCome || hasGone) // by the timer: the toolkit has to handle it first
        m_trayChange.start();
    return false;
}

void XembedTrayIcon::followTray()
{
    const auto tray = selectionOwner(m_connection, m_traySelection);
    if (std::exchange(m_tray, tray) == tray)
        return;
    const auto former = presence();
    m_icon.reset();
    if (tray != XCB_WINDOW_NONE) {
        m_icon = std::make_unique<QSystemTrayIcon>(m_drawing);
        m_icon->setContextMenu(&m_menu);
        updateToolTip();
        QObject::connect(m_icon.get(), &QSystemTrayIcon::activated, &m_context, [this](auto reason) {
            // The second of two quick clicks comes as a double click; it counts, too.
            if (reason != QSystemTrayIcon::Context)
                m_callbacks.activated(std::nullopt);
        });
        m_icon->show();
    }
    if (presence() != former)
        m_callbacks.presenceChanged();
}

void XembedTrayIcon::setMenu(std::vector<TrayMenuItem> items)
{
    const bool isSameMenu =
        std::ranges::equal(items, m_items, {}, &TrayMenuItem::text, &TrayMenuItem::text) && !items.empty();
    m_items = std::move(items);
    if (!isSameMenu) {
        m_menu.hide();
        m_menu.clear();
    }
    for (std::size_t position = 0; position < m_items.size(); ++position) {
        const auto &item = m_items[position];
        auto *action = isSameMenu
                           ? m_menu.actions().at(static_cast<qsizetype>(position))
                           : m_menu.addAction(QString::fromStdString(item.text).replace(u'&', QStringLiteral("&&")));
        action->setSeparator(item.text.empty());
        action->setEnabled(item.isEnabled);
        action->disconnect(&m_context);
        QObject::connect(action, &QAction::triggered, &m_context, [activate = item.activate] {
            if (activate)
                activate();
        });
    }
}

void XembedTrayIcon::setToolTip(std::string text)
{
    m_toolTip = QString::fromStdString(text);
    updateToolTip();
}

void XembedTrayIcon::updateToolTip()
{
    if (!m_icon)
        return;
    const auto name = QString::fromStdString(m_name);
    m_icon->setToolTip(m_toolTip.isEmpty() ? name : name + u'\n' + m_toolTip);
}

} // namespace ambertide
