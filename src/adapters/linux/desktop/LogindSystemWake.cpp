#include "adapters/linux/desktop/LogindSystemWake.h"

#include "adapters/linux/bus/SdBusReader.h"

#include <utility>

namespace ambertide {

LogindSystemWake::LogindSystemWake(DBusSession &systemBus)
    : m_match(systemBus.match(signalRule({{"sender", "org.freedesktop.login1"},
                                          {"path", "/org/freedesktop/login1"},
                                          {"interface", "org.freedesktop.login1.Manager"},
                                          {"member", "PrepareForSleep"}}),
                              [this, &systemBus](sd_bus_message *signal) {
                                  const auto isGoingToSleep = SdBusReader(signal).boolean();
                                  if (isGoingToSleep == false)
                                      systemBus.afterMessage([this] { m_observers.notify(); });
                              }))
{
}

Observation LogindSystemWake::observe(std::function<void()> handler) { return m_observers.observe(std::move(handler)); }

} // namespace ambertide
