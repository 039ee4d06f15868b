#pragma once

#include <systemd/sd-bus.h>

namespace ambertide {

/// Tells KWin to read its Night Light settings again, by the signal that KConfig sends when kwinrc has changed, which
/// names the group and its keys as arrays of bytes. `emit` is sd_bus_emit_signal(), whether linked or looked up.
inline int announceNightLight(decltype(&sd_bus_emit_signal) emit, sd_bus *bus)
{
    return emit(bus, "/kwinrc", "org.kde.kconfig.notify", "ConfigChanged", "a{saay}", 1, "NightColor", 3, //
                6, 'A', 'c', 't', 'i', 'v', 'e',                                                          //
                4, 'M', 'o', 'd', 'e',                                                                    //
                16, 'N', 'i', 'g', 'h', 't', 'T', 'e', 'm', 'p', 'e', 'r', 'a', 't', 'u', 'r', 'e');
}

} // namespace ambertide
