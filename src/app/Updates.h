#pragma once

#include "ports/UpdaterController.h"

#include <functional>

namespace ambertide {

struct SystemPorts;

/// Creates the updater of this application. Its controllers share one service, which lives as long as the factory; the
/// ports must outlive both. In a build without an updater (AMBERTIDE_UPDATER=OFF) the factory returns null. `restart`
/// is called when the user asks for it after an installation.
UpdaterControllerFactory makeUpdates(const SystemPorts &system, std::function<void()> restart);

} // namespace ambertide
