#pragma once

#include "adapters/linux/tray/TrayArtwork.h"
#include "ports/TrayIcon.h"

#include <QAbstractNativeEventFilter>
#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

#include <xcb/xcb.h>

#include <memory>

namespace ambertide {

/// A small window of ours that an X11 tray embeds. It keeps the grey of the drawing, because the tray's colours are not
/// known. Main thread.
///
/// QSystemTrayIcon looks for a tray on the session bus when first used, and waits for it; so it is not used until the X
/// server has a tray. Where the toolkit does not draw on X11, the presence is always Nowhere.
class XembedTrayIcon final : public TrayIcon, private QAbstractNativeEventFilter
{
public:
    XembedTrayIcon(const TrayArtwork &artwork, std::string name, Callbacks callbacks);

    Presence presence() const override { return m_icon ? Presence::Shown : Presence::Nowhere; }
    void setMenu(std::vector<TrayMenuItem> items) override;
    void setToolTip(std::string text) override;

private:
    bool nativeEventFilter(const QByteArray &kind, void *message, qintptr *result) override;
    void followTray();
    void updateToolTip();

    const std::string m_name;
    const Callbacks m_callbacks;
    QIcon m_drawing;
    QString m_toolTip;
    std::vector<TrayMenuItem> m_items;
    QMenu m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;  ///< while there is a tray
    xcb_connection_t *m_connection = nullptr; ///< the toolkit's
    xcb_atom_t m_traySelection = XCB_ATOM_NONE;
    xcb_atom_t m_managerMessage = XCB_ATOM_NONE;
    xcb_window_t m_tray = XCB_WINDOW_NONE;
    QTimer m_trayChange;
    QObject m_context; ///< receives the clicks
};

} // namespace ambertide
