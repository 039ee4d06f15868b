#include "app/MenuBarExtra.h"

#include "ui/panel/MenuBarView.h"
#include "ui/panel/PanelWindow.h"

#include <QCursor>
#include <QGuiApplication>
#include <QTimer>

#include <chrono>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// A press on the icon first closes an open panel as any press elsewhere does, and then reaches the icon, on some
/// desktops only when the button is released. For so long after the panel has closed, both count as the same click.
constexpr auto sameClick = 250ms;
/// How long the panel of an application that was started again waits for the desktop to show the icon.
constexpr auto patience = 1s;

} // namespace

MenuBarExtra::MenuBarExtra(Ports ports) : m_ports(std::move(ports)), m_self(this, [](MenuBarExtra *) {})
{
    m_icon = m_ports.createTrayIcon(
        {.activated = [this](std::optional<QPoint> place) { toggle(place); },
         .presenceChanged = [this] { QTimer::singleShot(0, this, &MenuBarExtra::followPresence); }});
    updateMenu();
    updateToolTip();
    connect(&m_ports.viewModel, &AppViewModel::changed, this, &MenuBarExtra::updateToolTip);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            reapplyIfTinted();
    });
    QTimer::singleShot(0, this, &MenuBarExtra::followPresence);
    // The updater calls its observers before the change, so the menu is made after this call.
    m_updaterObservation = m_ports.updater.observe([this] { QTimer::singleShot(0, this, &MenuBarExtra::updateMenu); });
}

MenuBarExtra::~MenuBarExtra()
{
    m_self.reset();
    if (m_panel) {
        m_panel->disconnect(this);
        delete m_panel;
    }
}

void MenuBarExtra::toggle(std::optional<QPoint> place)
{
    const auto manner = m_ports.placement.manner();
    // A popup can be placed at the pointer, and panels report the place in units of their own.
    m_place = manner == PanelPlacement::Manner::Popup ? QCursor::pos() : place;
    // An ordinary window may be covered by others, and cannot always be raised: a new one comes to the front.
    const bool mustComeForward = m_panel && m_panel->isFramed() && !m_panel->isActiveWindow();
    const bool isOpen = m_panel != nullptr;
    if (m_panel)
        m_panel->close();
    if (mustComeForward || (!isOpen && !m_hasJustClosed))
        open(manner, m_place);
}

void MenuBarExtra::show()
{
    m_isWanted = true;
    if (m_icon->presence() == TrayIcon::Presence::Pending)
        onMainAfter(patience, &MenuBarExtra::showNow);
    else
        showNow();
}

void MenuBarExtra::showNow()
{
    if (!std::exchange(m_isWanted, false))
        return;
    if (m_panel)
        m_panel->open(std::nullopt);
    else
        open(isIconShown() ? m_ports.placement.manner() : PanelPlacement::Manner::Window, m_place);
}

void MenuBarExtra::followPresence()
{
    const auto presence = m_icon->presence();
    m_hasBeenSeen = m_hasBeenSeen || isIconShown();
    if (presence == TrayIcon::Presence::Nowhere) {
        m_isWanted = m_isWanted || (m_ports.isStartedByPerson && !m_hasBeenSeen);
        explain();
    } else if (presence == TrayIcon::Presence::Shown) {
        if (m_view)
            m_view->setFootnote({}); // it is not true any more
    }
    if (presence != TrayIcon::Presence::Pending)
        showNow();
}

void MenuBarExtra::explain()
{
    if (!m_panel || std::exchange(m_hasExplained, true))
        return;
    m_view->setFootnote(tr("This desktop shows no tray icons. Start Ambertide again to open this panel."));
}

void MenuBarExtra::open(PanelPlacement::Manner manner, std::optional<QPoint> place)
{
    auto *view = new MenuBarView(m_ports.viewModel, m_ports.haptics);
    m_view = view;
    m_hasBeenSeen = true;
    m_panel = new PanelWindow(view, m_ports.placement, manner);
    connect(m_panel, &PanelWindow::closed, this, &MenuBarExtra::panelClosed);
    connect(view, &MenuBarView::settingsRequested, this, [this] {
        m_panel->close();
        m_ports.openSettings();
    });
    connect(view, &MenuBarView::scheduleRequested, this, [this] {
        m_panel->close();
        m_ports.openSchedule();
    });
    connect(view, &MenuBarView::quitRequested, this, [this] { m_ports.quit(); });
    m_panel->open(place);
    if (m_icon->presence() == TrayIcon::Presence::Nowhere)
        explain();
    reapplyIfTinted();
}

void MenuBarExtra::panelClosed()
{
    m_panel->deleteLater();
    m_panel.clear();
    m_hasJustClosed = true;
    m_justClosed.cancel();
    m_justClosed = onMainAfter(sameClick, &MenuBarExtra::forgetClosing);
    if (m_ports.viewModel.isNeutralTemperature())
        return;
    onMainAfter(500ms, &MenuBarExtra::reapplyIfTinted);
    onMainAfter(2s, &MenuBarExtra::reapplyIfTinted);
}

void MenuBarExtra::forgetClosing()
{
    const bool isButtonHeld = m_ports.placement.isButtonHeld();
    // After the button has been released the click may take as long again to reach the icon.
    if (std::exchange(m_wasButtonHeld, isButtonHeld) || isButtonHeld)
        m_justClosed = onMainAfter(sameClick, &MenuBarExtra::forgetClosing);
    else
        m_hasJustClosed = false;
}

void MenuBarExtra::reapplyIfTinted()
{
    if (!m_ports.viewModel.isNeutralTemperature())
        m_ports.viewModel.reapplyCurrentTemperature();
}

Task MenuBarExtra::onMainAfter(std::chrono::nanoseconds delay, void (MenuBarExtra::*action)())
{
    return Task::start(m_ports.executor, [weak = std::weak_ptr(m_self), delay, action](TaskContext context) -> Async {
        co_await context.sleep(delay);
        co_await context.onMain();
        context.throwIfCancelled();
        if (const auto self = weak.lock())
            (self.get()->*action)();
    });
}

void MenuBarExtra::updateMenu()
{
    std::vector<TrayMenuItem> menu = {{.text = tr("Settings...").toStdString(), .activate = m_ports.openSettings}};
    if (m_ports.updater.isBuiltIn())
        menu.push_back({.text = tr("Check for Updates...").toStdString(),
                        .isEnabled = m_ports.updater.canCheckForUpdates(),
                        .activate = [this] { m_ports.updater.checkForUpdates(); }});
    menu.push_back({.text = {}, .activate = {}});
    menu.push_back({.text = tr("Quit Ambertide").toStdString(), .activate = m_ports.quit});
    m_icon->setMenu(std::move(menu));
}

void MenuBarExtra::updateToolTip() { m_icon->setToolTip(MenuBarView::statusText(m_ports.viewModel).toStdString()); }

} // namespace ambertide
