#pragma once

#include "adapters/linux/displays/shared/DisplayBackend.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace ambertide {

/// Where the displays of this session may be found.
struct DisplaySession
{
    std::string waylandDisplay; ///< name or path of the Wayland socket; empty outside a Wayland session
    std::string x11Display;     ///< name of the X server; empty where there is none
    std::filesystem::path guardian;
};

struct ChosenDisplayBackend
{
    std::unique_ptr<DisplayBackend> backend; ///< never null: where nothing can tint, it has no displays
    std::string refusal;                     ///< where nothing can tint: a line for the user with the reasons
};

/// Tries the kinds of display server in a fixed order and takes the first through which this session can be tinted. A
/// Wayland session never falls through to X11, whose tables have no effect there. `choice` is empty, the name of the
/// only kind to try, or "none". May wait for a display server or a bus.
ChosenDisplayBackend chooseDisplayBackend(const DisplaySession &session, std::string_view choice);

} // namespace ambertide
