#include "app/AmbertideApp.h"

#include <QApplication>
#include <QWidget>

#include <utility>

namespace ambertide {

namespace {

void bringSettingsForward()
{
    const auto windows = QApplication::topLevelWidgets();
    for (auto *window : windows) {
        if (!window->isVisible() || !window->windowTitle().contains(QLatin1String("Settings")))
            continue;
        if (window->isMinimized())
            window->showNormal();
        window->raise();
        window->activateWindow();
        return;
    }
}

} // namespace

AmbertideApp::AmbertideApp(Ports ports)
    : m_viewModel({ports.displays, ports.executor, ports.wake, ports.userDefaults, m_notifications,
                   ports.distributedNotifications, ports.calendar}),
      m_updater(ports.createUpdaterController, ports.userDefaults),
      m_delegate({ports.mainBundle, ports.runningApplications, m_notifications, ports.distributedNotifications,
                  ports.wake, ports.userDefaults, ports.executor, std::move(ports.terminate), bringSettingsForward})
{
}

} // namespace ambertide
