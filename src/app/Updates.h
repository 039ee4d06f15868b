#pragma once

#include "ports/UpdaterController.h"

#include <functional>

namespace ambertide {

struct SystemPorts;

/// The updater of this application. Its controllers share one service, which lives as long as the factory; the ports
/// outlive both. In a build without an updater (AMBERTIDE_UPDATER=OFF) the controllers cannot check. `restart` is
/// called when a person asks for it after an installation.
UpdaterControllerFactory makeUpdates(const SystemPorts &system, std::function<void()> restart);

} // namespace ambertide
