#pragma once

#include "Measuring.h"
#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBus.h"
#include "support/PrivateBus.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QProcess>
#include <QTemporaryDir>

#include <stdexcept>
#include <string>

namespace ambertide {

/// The application with an X server, buses and settings of its own.
class Session
{
public:
    Session();
    ~Session() { stop(); }

    void start();
    void waitUntilReached();
    void stop();
    int tool(const QStringList &arguments);
    std::vector<std::uint16_t> shown() { return m_client.levels(m_client.crtcs().front()); }
    /// Waits until no table has changed for half a second.
    void settle();
    pid_t process() const { return static_cast<pid_t>(m_application.processId()); }
    std::string display() const { return m_server.display(); }
    /// Writes the temperature to the settings file. Only while the application does not run.
    void store(const char *temperature);

private:
    QTemporaryDir m_folder;
    PrivateXServer m_server{PrivateXServer::Kind::framebuffer};
    PrivateBus m_bus;
    PrivateBus m_systemBus{"DBUS_SYSTEM_BUS_ADDRESS"};
    RandrClient m_client{m_server.display()};
    QProcess m_application;
};

/// A connection that calls the application.
class Caller
{
public:
    Caller();

    template <typename... Arguments>
    void call(const char *path, const char *interface, const char *member, const char *types, Arguments... arguments)
    {
        callOther(bus_names::application, path, interface, member, types, arguments...);
    }
    template <typename... Arguments>
    void callOther(const char *name, const char *path, const char *interface, const char *member, const char *types,
                   Arguments... arguments)
    {
        sd_bus_message *message = nullptr;
        sd_bus_message_new_method_call(m_bus.get(), &message, name, path, interface, member);
        const SdBusMessage owner(message);
        sd_bus_message_append(message, types, arguments...);
        if (!callUntil(m_bus.get(), message, Clock::now() + std::chrono::seconds(20)))
            throw std::runtime_error(std::string("the application does not answer ") + member);
    }

private:
    SdBusConnection m_bus = openSdBus(SdBusKind::session);
};

} // namespace ambertide
