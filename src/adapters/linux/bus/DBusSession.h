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

/// The application's connection to one bus, served by Qt's event loop: it wakes up for messages and for nothing else.
///
/// Main thread. Connecting does not wait for the bus. A bus that is not there, at the start or later, is
/// tried again, first after 200 ms and then in growing pauses of up to `longestPause`, with one line each time it goes
/// and comes back; what was installed is installed again.
class DBusSession
{
public:
    explicit DBusSession(SdBusKind kind, std::chrono::milliseconds longestPause = std::chrono::seconds(10));

    /// Puts something (a match, an object, a name) on a connection; what is returned is let go with the registration or
    /// the connection. Called at once and again for each new connection, from which the bus may not have answered yet:
    /// it must not wait.
    using Installer = std::function<SdBusSlot(sd_bus *)>;
    Observation install(Installer installer);

    /// Sees a message while it is under way: what it has to tell others goes through afterMessage().
    using MessageHandler = std::function<void(sd_bus_message *)>;
    /// Has signals handled that the rule finds; see signalRule().
    Observation match(std::string rule, MessageHandler handler);
    /// Sends a call on each connection. `answered` gets the reply or the error, however late.
    Observation call(std::function<SdBusMessage(sd_bus *)> makeCall, MessageHandler answered);
    /// Asks the bus for this name; `answered` gets its reply to RequestName.
    Observation requestName(const std::string &name, MessageHandler answered);
    /// Tells when a name gets an owner or loses the last one, once the message has been handled.
    Observation watchName(std::string_view name, std::function<void(bool isOwned)> changed);
    /// Exports one interface of an object. `members` and `object` must outlive the observation.
    Observation exportObject(const char *path, const char *interface, const sd_bus_vtable *members, void *object);

    /// Runs `work` once the message under way has been handled. Observers are called like this, so that they may do
    /// what they like: nothing of sd-bus is on the stack.
    void afterMessage(std::function<void()> work);

    /// For building messages; null while there is no connection.
    sd_bus *bus() const { return m_bus.get(); }
    /// Sends without waiting. Null and messages that cannot be sent are dropped.
    void send(const SdBusMessage &message);

    /// The connection for calls that wait, as soon as the bus has answered. Null, and at most at the deadline, when it
    /// has not.
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
    std::size_t m_retries = 0; ///< since the bus has last answered
    bool m_isLost = false;
};

} // namespace ambertide
