#include "adapters/linux/desktop/LogindSystemWake.h"

#include "adapters/linux/bus/SdBusReader.h"

#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

LogindSystemWake::LogindSystemWake(DBusSession &systemBus)
    : m_match(systemBus.match(signalRule({{"sender", "org.freedesktop.login1"},
                                          {"path", "/org/freedesktop/login1"},
                                          {"interface", "org.freedesktop.login1.Manager"},
                                          {"member", "PrepareForSleep"}}),
                              [this, &systemBus](sd_bus_message *signal) {
                                  const auto isGoingToSleep = SdBusReader(signal).boolean();
                                  if (isGoingToSleep == false)
                                      systemBus.afterMessage([this] { tell(); });
                              }))
{
    for (auto &timer : m_later) {
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { m_observers.notify(); });
    }
}

void LogindSystemWake::tell()
{
    m_later[0].start(1s);
    m_later[1].start(3s);
    m_observers.notify();
}

Observation LogindSystemWake::observe(std::function<void()> handler) { return m_observers.observe(std::move(handler)); }

} // namespace ambertide
