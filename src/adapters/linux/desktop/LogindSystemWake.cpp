#include "adapters/linux/desktop/LogindSystemWake.h"

#include <utility>

namespace ambertide {

namespace {

constexpr char rule[] = "type='signal',sender='org.freedesktop.login1',path='/org/freedesktop/login1',"
                        "interface='org.freedesktop.login1.Manager',member='PrepareForSleep'";

} // namespace

LogindSystemWake::LogindSystemWake(DBusSession &systemBus)
    : m_systemBus(systemBus),
      m_match(systemBus.install([this](sd_bus *bus) { return addMatch(bus, rule, receive, this); }))
{
}

int LogindSystemWake::receive(sd_bus_message *message, void *context, sd_bus_error *)
{
    auto &wake = *static_cast<LogindSystemWake *>(context);
    int isGoingToSleep = 1;
    if (sd_bus_message_read_basic(message, 'b', static_cast<void *>(&isGoingToSleep)) > 0 && isGoingToSleep == 0)
        wake.m_systemBus.afterMessage([&wake] { wake.m_observers.notify(); });
    return 0;
}

Observation LogindSystemWake::observe(std::function<void()> handler)
{
    return m_observers.observe(std::move(handler));
}

} // namespace ambertide
