#pragma once

#include "adapters/linux/displays/shared/BackendDisplayServices.h"

#include <filesystem>
#include <memory>

namespace ambertide {

/// The displays of the session that the environment names. A Wayland session never falls through to X11, whose tables
/// have no effect there. Where nothing can tint, one line says so and there are no displays.
///
/// `programs` is the folder with the application's own programs.
std::unique_ptr<BackendDisplayServices> makeSessionDisplayServices(const std::filesystem::path &programs);

} // namespace ambertide
