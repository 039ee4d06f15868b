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

namespace ambertide {

/// The application's connection to one bus, served by Qt's event loop: it wakes up for messages and for nothing else.
///
/// Main thread. Connecting does not wait for the bus. A bus that is not there, at the start or later, is
/// tried again every `retryInterval`, with one line each time it goes and comes back; what was installed is installed
/// again.
class DBusSession
{
public:
    explicit DBusSession(SdBusKind kind, std::chrono::milliseconds retryInterval = std::chrono::seconds(10));

    /// Puts something (a match, an object, a name) on a connection; what is returned is let go with the registration or
    /// the connection. Called at once and again for each new connection, from which the bus may not have answered yet:
    /// it must not wait.
    using Installer = std::function<SdBusSlot(sd_bus *)>;
    Observation install(Installer installer);

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
    bool m_isLost = false;
};

} // namespace ambertide
