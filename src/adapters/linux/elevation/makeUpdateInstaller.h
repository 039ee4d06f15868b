#pragma once

#include "ports/UpdateInstaller.h"

#include <filesystem>
#include <memory>

namespace ambertide {

/// The installer whose helper is in the folder `programs`. In a build without an updater (AMBERTIDE_UPDATER=OFF), one
/// that always fails.
std::unique_ptr<UpdateInstaller> makeUpdateInstaller(const std::filesystem::path &programs);

} // namespace ambertide
