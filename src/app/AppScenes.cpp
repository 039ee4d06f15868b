#include "app/AppScenes.h"

#include <utility>

namespace ambertide {

AppScenes::AppScenes(Ports ports)
    : m_ports(std::move(ports)), m_appearance(m_ports.appearance),
      m_menuBarExtra({m_ports.viewModel, m_ports.updater, m_ports.executor, m_ports.haptics, m_ports.placement,
                      m_ports.createTrayIcon, [this] { showSettings(); }, m_ports.quit})
{
}

AppScenes::~AppScenes() { delete m_settings; }

void AppScenes::activate()
{
    if (m_settings && m_settings->isVisible() && m_menuBarExtra.isIconShown())
        bringSettingsForward();
    else
        m_menuBarExtra.openAsWindow();
}

void AppScenes::showSettings()
{
    if (!m_settings) {
        m_settings = new SettingsView(m_ports.viewModel, m_ports.settings);
        connect(m_settings, &SettingsView::quitRequested, this, [this] { m_ports.quit(); });
    }
    m_settings->show();
    bringSettingsForward();
}

void AppScenes::bringSettingsForward()
{
    if (!m_settings || !m_settings->isVisible())
        return;
    if (m_settings->isMinimized())
        m_settings->showNormal();
    m_settings->raise();
    m_settings->activateWindow();
}

} // namespace ambertide
