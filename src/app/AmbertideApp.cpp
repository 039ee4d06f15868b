#include "app/AmbertideApp.h"

#include <utility>

namespace ambertide {

AmbertideApp::AmbertideApp(Ports ports)
    : m_viewModel({ports.displays, ports.executor, ports.wake, ports.userDefaults, m_notifications,
                   ports.distributedNotifications, ports.calendar}),
      m_updater(ports.createUpdaterController, ports.userDefaults),
      m_delegate({ports.mainBundle, ports.runningApplications, m_notifications, ports.distributedNotifications,
                  ports.wake, ports.userDefaults, ports.executor, std::move(ports.terminate),
                  std::move(ports.bringSettingsForward)})
{
}

} // namespace ambertide
