#include "app/MenuBarExtra.h"

#include "ui/panel/MenuBarView.h"
#include "ui/panel/PanelWindow.h"

#include <QGuiApplication>
#include <QTimer>

#include <chrono>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// The press on the icon that closes an open panel reaches the icon as well, on some desktops with its release.
constexpr auto sameClick = 250ms;

} // namespace

MenuBarExtra::MenuBarExtra(Ports ports) : m_ports(std::move(ports)), m_self(this, [](MenuBarExtra *) {})
{
    m_icon = m_ports.createTrayIcon(
        {.activated = [this](std::optional<QPoint> place) { toggle(place); }, .presenceChanged = [] {}});
    updateMenu();
    updateToolTip();
    connect(&m_ports.viewModel, &AppViewModel::changed, this, &MenuBarExtra::updateToolTip);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            reapplyIfTinted();
    });
    // It is told before the change.
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
    if (m_panel)
        m_panel->close();
    else if (!m_hasJustClosed)
        open(m_ports.placement.manner(), place);
}

void MenuBarExtra::openAsWindow()
{
    if (m_panel)
        m_panel->open(std::nullopt);
    else
        open(PanelPlacement::Manner::Window, std::nullopt);
}

void MenuBarExtra::open(PanelPlacement::Manner manner, std::optional<QPoint> place)
{
    auto *view = new MenuBarView(m_ports.viewModel, m_ports.haptics);
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
    // A release is waited for as long as a click.
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
    if (m_ports.updater.isConfigured())
        menu.push_back({.text = tr("Check for Updates...").toStdString(),
                        .isEnabled = m_ports.updater.canCheckForUpdates(),
                        .activate = [this] { m_ports.updater.checkForUpdates(); }});
    menu.push_back({.text = {}, .activate = {}});
    menu.push_back({.text = tr("Quit Ambertide").toStdString(), .activate = m_ports.quit});
    m_icon->setMenu(std::move(menu));
}

void MenuBarExtra::updateToolTip() { m_icon->setToolTip(MenuBarView::statusText(m_ports.viewModel).toStdString()); }

} // namespace ambertide
