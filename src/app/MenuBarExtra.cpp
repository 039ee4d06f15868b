#include "app/MenuBarExtra.h"

#include "ui/panel/MenuBarView.h"
#include "ui/panel/PanelWindow.h"

#include <QGuiApplication>

#include <chrono>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// The press on the icon that closes an open panel reaches the icon as well, on some desktops with its release.
constexpr qint64 sameClick = 250; // ms

} // namespace

MenuBarExtra::MenuBarExtra(Ports ports) : m_ports(std::move(ports)), m_self(this, [](MenuBarExtra *) {})
{
    m_icon = m_ports.createTrayIcon({.activated = [this] { toggle(); }, .presenceChanged = [] {}});
    updateMenu();
    updateToolTip();
    connect(&m_ports.viewModel, &AppViewModel::changed, this, &MenuBarExtra::updateToolTip);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            reapplyIfTinted();
    });
    const auto updateMenuLater = [this] {
        QMetaObject::invokeMethod(
            this, [this] { updateMenu(); }, Qt::QueuedConnection);
    };
    m_updaterObservation = m_ports.updater.observe(updateMenuLater);
}

MenuBarExtra::~MenuBarExtra()
{
    m_self.reset();
    if (m_panel) {
        m_panel->disconnect(this);
        delete m_panel;
    }
}

void MenuBarExtra::toggle()
{
    if (m_panel)
        m_panel->close();
    else if (!m_sinceClosed.isValid() || m_sinceClosed.elapsed() > sameClick)
        open(m_ports.placement.manner());
}

void MenuBarExtra::openAsWindow()
{
    if (m_panel)
        m_panel->open();
    else
        open(PanelPlacement::Manner::Window);
}

void MenuBarExtra::open(PanelPlacement::Manner manner)
{
    auto *view = new MenuBarView(m_ports.viewModel, m_ports.haptics);
    m_panel = new PanelWindow(view, m_ports.placement, manner);
    connect(m_panel, &PanelWindow::closed, this, &MenuBarExtra::panelClosed);
    connect(view, &MenuBarView::settingsRequested, this, [this] {
        m_panel->close();
        m_ports.openSettings();
    });
    connect(view, &MenuBarView::quitRequested, this, [this] { m_ports.quit(); });
    m_panel->open();
    reapplyIfTinted();
}

void MenuBarExtra::panelClosed()
{
    m_sinceClosed.start();
    m_panel->deleteLater();
    m_panel.clear();
    if (m_ports.viewModel.isNeutralTemperature())
        return;
    reapplyAfter(500ms);
    reapplyAfter(2s);
}

void MenuBarExtra::reapplyIfTinted()
{
    if (!m_ports.viewModel.isNeutralTemperature())
        m_ports.viewModel.reapplyCurrentTemperature();
}

void MenuBarExtra::reapplyAfter(std::chrono::nanoseconds delay)
{
    Task::start(m_ports.executor, [weak = std::weak_ptr(m_self), delay](TaskContext context) -> Async {
        co_await context.sleep(delay);
        co_await context.onMain();
        if (const auto self = weak.lock())
            self->reapplyIfTinted();
    });
}

void MenuBarExtra::updateMenu()
{
    m_icon->setMenu({
        {.text = tr("Settings...").toStdString(), .activate = m_ports.openSettings},
        {.text = tr("Check for Updates...").toStdString(),
         .isEnabled = m_ports.updater.canCheckForUpdates(),
         .activate = [this] { m_ports.updater.checkForUpdates(); }},
        {.text = {}, .activate = {}},
        {.text = tr("Quit Ambertide").toStdString(), .activate = m_ports.quit},
    });
}

void MenuBarExtra::updateToolTip()
{
    m_icon->setToolTip(MenuBarView::temperatureText(m_ports.viewModel.temperature()).toStdString());
}

} // namespace ambertide
