#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "base/Observation.h"

#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace ambertide {

/// The application's connection to one bus, served by Qt's event loop, which it wakes up for messages only.
///
/// Main thread. Connecting does not wait for the bus. When the bus is missing, at the start or later, connecting is
/// tried again, first after 200 ms and then at growing intervals of up to `longestPause`. One line is printed when the
/// bus is lost and one when it is back; whatever was installed is then installed again.
class DBusSession
{
public:
    explicit DBusSession(SdBusKind kind, std::chrono::milliseconds longestPause = std::chrono::seconds(10));

    /// Sets up a match, an object or a name on a connection, and returns its slot, which is released when the
    /// observation ends or the connection is lost. Called at once and again for each new connection. The bus may not
    /// have answered on it yet, so an installer must not wait.
    using Installer = std::function<SdBusSlot(sd_bus *)>;
    Observation install(Installer installer);

    /// Called while sd-bus is still dispatching the message, so it must notify others through afterMessage().
    using MessageHandler = std::function<void(sd_bus_message *)>;
    /// Calls the handler for the signals that the rule matches; see signalRule().
    Observation match(std::string rule, MessageHandler handler);
    /// Sends a call on this connection and on each later one. `answered` gets the reply or the error, however late.
    Observation call(std::function<SdBusMessage(sd_bus *)> makeCall, MessageHandler answered);
    /// Asks the bus for this name; `answered` gets its reply to RequestName.
    Observation requestName(const std::string &name, MessageHandler answered);
    /// Calls `changed` when a name gets an owner or loses its last one, once the message has been handled.
    Observation watchName(std::string_view name, std::function<void(bool isOwned)> changed);
    /// Exports one interface of an object. `members` and `object` must outlive the observation.
    Observation exportObject(const char *path, const char *interface, const sd_bus_vtable *members, void *object);

    /// Runs `work` once the current message has been handled. Observers are called this way, with no sd-bus function on
    /// the stack, so that they are free to do anything, such as ending observations.
    void afterMessage(std::function<void()> work);

    /// For building messages; null while there is no connection.
    sd_bus *bus() const { return m_bus.get(); }
    /// Sends without waiting. Null and messages that cannot be sent are dropped.
    void send(const SdBusMessage &message);

    /// Waits until the bus has answered, and returns the connection for blocking calls. Null when there is no
    /// connection or the deadline has passed.
    sd_bus *readyBus(SdBusDeadline deadline);

private:
    struct Installation
    {
        Installer installer;
        SdBusSlot slot;
    };

    bool connect();
    void processMessages();
    void noteLoss();
    void noteReturn();
    void retryLater();
    void scheduleNextTurn();
    void watch(QSocketNotifier &notifier, bool isWanted);

    SdBusKind m_kind;
    SdBusConnection m_bus;
    std::uint64_t m_nextInstallation = 0;
    std::map<std::uint64_t, Installation> m_installations;
    std::deque<std::function<void()>> m_afterMessage;
    QSocketNotifier m_readable{QSocketNotifier::Read};
    QSocketNotifier m_writable{QSocketNotifier::Write};
    QTimer m_nextTurn;
    QTimer m_retry;
    const std::chrono::milliseconds m_longestPause;
    std::size_t m_retries = 0; ///< since the bus last answered
    bool m_isLost = false;
};

} // namespace ambertide
