#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "adapters/linux/displays/kwin/settings/giveNightLightBack.h"

#include <optional>

namespace ambertide {

/// KWin's Night Light on the session bus, through a connection that lasts from connect() to disconnect(). One thread at
/// a time. Neither connecting nor a call waits for longer than `patience`.
class NightLightService
{
public:
    static constexpr std::chrono::milliseconds patience{300};

    struct Changes
    {
        std::optional<bool> isInhibited; ///< the new state
        bool settings = false;           ///< somebody has changed kwinrc, this program included
    };

    NightLightService() = default;
    NightLightService(const NightLightService &) = delete;
    NightLightService &operator=(const NightLightService &) = delete;

    /// False when there is no session bus or it does not answer. Does nothing when there is a connection already.
    bool connect();
    void disconnect();

    /// Connects if necessary. Nothing when Night Light is not there or does not answer.
    std::optional<NightLightState> state();
    /// Has KWin read its settings again; connects if necessary.
    void announceChange();

    /// -1 without a connection.
    int descriptor() const;
    /// Whether process() has something to do although the descriptor is not readable: messages that were read while
    /// waiting for a reply.
    bool hasMore() const;
    /// Handles what has arrived, without waiting. Returns what has changed since the last call.
    Changes process();

private:
    static int receiveProperties(sd_bus_message *message, void *context, sd_bus_error *error);
    static int receiveConfigChange(sd_bus_message *message, void *context, sd_bus_error *error);

    SdBusConnection m_bus;
    SdBusSlot m_properties;
    SdBusSlot m_configChanges;
    Changes m_changes;
};

} // namespace ambertide
