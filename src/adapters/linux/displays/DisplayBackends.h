#pragma once

#include "adapters/linux/displays/shared/DisplayBackend.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace ambertide {

/// Where the displays of this session may be asked for.
struct DisplaySession
{
    std::string waylandDisplay; ///< name or path of the Wayland socket; empty where the session is none of Wayland
    std::string x11Display;     ///< name of the X server; empty where there is none
    std::filesystem::path guardian;
};

struct ChosenDisplayBackend
{
    std::unique_ptr<DisplayBackend> backend; ///< never null: where nothing serves, it has no displays
    std::string refusal;                     ///< where nothing serves: a line for the user with the reasons
};

/// The first kind of display server that can serve the session, in the one order that there is. A Wayland session never
/// falls through to X11, whose tables have no effect there. `choice` is empty or names the only kind to be asked, or
/// "none". May wait for a display server or a bus.
ChosenDisplayBackend chooseDisplayBackend(const DisplaySession &session, std::string_view choice);

} // namespace ambertide
