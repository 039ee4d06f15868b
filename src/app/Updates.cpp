#include "app/Updates.h"

#include "ports/SystemPorts.h"
#include "ui/updates/UpdateWindow.h"
#include "update/UpdateService.h"

#include <memory>
#include <utility>

namespace ambertide {

UpdaterControllerFactory makeUpdates(const SystemPorts &system, std::function<void()> restart)
{
    auto service = std::make_shared<UpdateService>(
        UpdateConfiguration::fromBundle(system.mainBundle), system.userDefaults, system.calendar, system.executor,
        system.updateInstaller, [restart = std::move(restart)](UpdateSession &session) {
            return std::make_unique<UpdateWindow>(session, restart);
        });
    return [service = std::move(service)] { return service->createController(); };
}

} // namespace ambertide
