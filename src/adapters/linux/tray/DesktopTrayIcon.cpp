#include "adapters/linux/tray/DesktopTrayIcon.h"

#include "adapters/linux/tray/XembedTrayIcon.h"
#include "base/Console.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace ambertide {

namespace {

constexpr char applicationName[] = "Ambertide";

std::unique_ptr<TrayIcon> makeXembedTrayIcon(const TrayArtwork &artwork, TrayIcon::Callbacks callbacks)
{
    return std::make_unique<XembedTrayIcon>(artwork, applicationName, std::move(callbacks));
}

/// GNOME Shell shows the icons by an extension, which opens the menu at a click and activates at a double click. It
/// does not show an icon without a menu, and with an empty menu a click does nothing.
StatusNotifierItem::Click clickOfDesktop()
{
    const char *desktops = std::getenv("XDG_CURRENT_DESKTOP"); // a colon-separated list, such as "ubuntu:GNOME"
    const bool isGnome = desktops != nullptr && std::string_view(desktops).find("GNOME") != std::string_view::npos;
    return isGnome ? StatusNotifierItem::Click::OpensMenu : StatusNotifierItem::Click::Activates;
}

} // namespace

DesktopTrayIcon::DesktopTrayIcon(DBusSession &session, std::filesystem::path iconsFolder, Callbacks callbacks)
    : DesktopTrayIcon(session, std::move(iconsFolder), std::move(callbacks), makeXembedTrayIcon, defaultPatience)
{
}

DesktopTrayIcon::DesktopTrayIcon(DBusSession &session, std::filesystem::path iconsFolder, Callbacks callbacks,
                                 MakeFallback makeFallback, Patience patience)
    : m_artwork(std::move(iconsFolder)), m_callbacks(std::move(callbacks)), m_makeFallback(std::move(makeFallback)),
      m_item(session, m_artwork, applicationName, clickOfDesktop(), {m_callbacks.activated, [this] { followItem(); }})
{
    const auto prepare = [this](QTimer &timer, std::chrono::milliseconds delay, void (DesktopTrayIcon::*action)()) {
        timer.setSingleShot(true);
        timer.setInterval(delay);
        QObject::connect(&timer, &QTimer::timeout, &timer, [this, action] { (this->*action)(); });
    };
    prepare(m_untilFallback, patience.beforeFallback, &DesktopTrayIcon::fallBack);
    prepare(m_untilNowhere, patience.beforeNowhere, &DesktopTrayIcon::followFallback);
    if (session.bus() == nullptr)
        fallBack();
    m_isReady = true;
}

void DesktopTrayIcon::followItem()
{
    switch (m_item.presence()) {
    case Presence::Shown:
        m_untilFallback.stop();
        m_untilNowhere.stop();
        m_fallback.reset();
        setPresence(Presence::Shown);
        break;
    case Presence::Pending: // a watcher is there
        m_untilFallback.stop();
        m_untilNowhere.stop();
        setPresence(m_fallback && m_fallback->presence() == Presence::Shown ? Presence::Shown : Presence::Pending);
        break;
    case Presence::Nowhere:
        if (m_fallback) {
            if (m_presence == Presence::Pending)
                m_untilNowhere.start();
            followFallback();
            break;
        }
        setPresence(Presence::Pending);
        m_untilFallback.start();
        m_untilNowhere.start();
        break;
    }
}

void DesktopTrayIcon::fallBack()
{
    m_fallback = m_makeFallback(m_artwork, {m_callbacks.activated, [this] { followFallback(); }});
    m_fallback->setMenu(m_menu);
    m_fallback->setToolTip(m_toolTip);
    followFallback();
}

void DesktopTrayIcon::followFallback()
{
    if (!m_fallback)
        return;
    if (m_presence == Presence::Shown && m_fallback->presence() == Presence::Nowhere)
        m_untilNowhere.start();
    const bool mayStillCome = m_fallback->presence() == Presence::Nowhere && m_untilNowhere.isActive();
    setPresence(mayStillCome ? Presence::Pending : m_fallback->presence());
    if (m_presence == Presence::Nowhere && !std::exchange(m_hasExplained, true))
        console::print("This desktop shows no tray icons: start Ambertide again to open its panel");
}

void DesktopTrayIcon::setPresence(Presence presence)
{
    if (std::exchange(m_presence, presence) != presence && m_isReady)
        m_callbacks.presenceChanged();
}

void DesktopTrayIcon::setMenu(std::vector<TrayMenuItem> items)
{
    m_menu = std::move(items);
    m_item.setMenu(m_menu);
    if (m_fallback)
        m_fallback->setMenu(m_menu);
}

void DesktopTrayIcon::setToolTip(std::string text)
{
    m_toolTip = std::move(text);
    m_item.setToolTip(m_toolTip);
    if (m_fallback)
        m_fallback->setToolTip(m_toolTip);
}

} // namespace ambertide
