#include "adapters/linux/bus/DBusSession.h"

#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/bus/SdBusWriter.h"
#include "base/Console.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace ambertide {

namespace {

/// How long a flood of messages may keep the main thread from other work at a time.
constexpr std::chrono::milliseconds longestTurn{30};

/// D-Bus Specification, "org.freedesktop.DBus.RequestName".
constexpr std::uint32_t doNotQueue = 4;

const char *absenceOf(SdBusKind kind)
{
    return kind == SdBusKind::session
               ? "No session bus: the ambertide command and a second start of Ambertide cannot reach this copy"
               : "No system bus: waking from sleep is not noticed at once";
}

int handle(sd_bus_message *message, void *handler, sd_bus_error *)
{
    (*static_cast<const DBusSession::MessageHandler *>(handler))(message);
    return 0;
}

std::string nameOf(SdBusKind kind) { return kind == SdBusKind::session ? "session bus" : "system bus"; }

} // namespace

DBusSession::DBusSession(SdBusKind kind, std::chrono::milliseconds longestPause)
    : m_kind(kind), m_longestPause(longestPause)
{
    QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable, [this] { processMessages(); });
    QObject::connect(&m_writable, &QSocketNotifier::activated, &m_writable, [this] { processMessages(); });
    m_nextTurn.setSingleShot(true);
    QObject::connect(&m_nextTurn, &QTimer::timeout, &m_nextTurn, [this] { processMessages(); });
    m_retry.setSingleShot(true);
    QObject::connect(&m_retry, &QTimer::timeout, &m_retry, [this] {
        if (!connect())
            retryLater();
    });
    if (!connect()) {
        console::print(absenceOf(kind));
        m_isLost = true;
        retryLater();
    }
}

bool DBusSession::connect()
{
    m_bus = openSdBus(m_kind);
    if (!m_bus)
        return false;
    for (auto &[number, installation] : m_installations)
        installation.slot = installation.installer(m_bus.get());
    scheduleNextTurn();
    return true;
}

Observation DBusSession::install(Installer installer)
{
    const auto number = m_nextInstallation++;
    auto slot = m_bus ? installer(m_bus.get()) : SdBusSlot();
    m_installations.emplace(number, Installation{std::move(installer), std::move(slot)});
    scheduleNextTurn();
    return Observation([this, number] {
        m_installations.erase(number);
        scheduleNextTurn();
    });
}

Observation DBusSession::match(std::string rule, MessageHandler handler)
{
    return install([rule = std::move(rule), shared = std::make_shared<MessageHandler>(std::move(handler))](
                       sd_bus *bus) { return addMatch(bus, rule, handle, shared.get()); });
}

Observation DBusSession::call(std::function<SdBusMessage(sd_bus *)> makeCall, MessageHandler answered)
{
    return install(
        [makeCall = std::move(makeCall), shared = std::make_shared<MessageHandler>(std::move(answered))](sd_bus *bus) {
            constexpr auto noTimeLimit = std::numeric_limits<std::uint64_t>::max();
            const auto message = makeCall(bus);
            sd_bus_slot *slot = nullptr;
            if (message)
                sd_bus_call_async(bus, &slot, message.get(), handle, shared.get(), noTimeLimit);
            return SdBusSlot(slot);
        });
}

Observation DBusSession::requestName(const std::string &name, MessageHandler answered)
{
    return call([name](sd_bus *bus) { return SdBusWriter::busCall(bus, "RequestName").add(name, doNotQueue).take(); },
                std::move(answered));
}

Observation DBusSession::watchName(std::string_view name, std::function<void(bool isOwned)> changed)
{
    const auto rule = signalRule({{"sender", "org.freedesktop.DBus"},
                                  {"interface", "org.freedesktop.DBus"},
                                  {"member", "NameOwnerChanged"},
                                  {"arg0", name}});
    return match(rule, [this, changed = std::move(changed)](sd_bus_message *signal) {
        SdBusReader reader(signal);
        const bool isRead = reader.text() && reader.text(); // the name and its previous owner
        if (const auto owner = isRead ? reader.text() : std::nullopt)
            afterMessage([changed, isOwned = !owner->empty()] { changed(isOwned); });
    });
}

Observation DBusSession::exportObject(const char *path, const char *interface, const sd_bus_vtable *members,
                                      void *object)
{
    return install([=](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        sd_bus_add_object_vtable(bus, &slot, path, interface, members, object);
        return SdBusSlot(slot);
    });
}

void DBusSession::afterMessage(std::function<void()> work) { m_afterMessage.push_back(std::move(work)); }

void DBusSession::send(const SdBusMessage &message)
{
    if (!m_bus || !message)
        return;
    sd_bus_send(m_bus.get(), message.get(), nullptr);
    scheduleNextTurn();
}

sd_bus *DBusSession::readyBus(SdBusDeadline deadline)
{
    if (!m_bus)
        return nullptr;
    // Messages that sd-bus has read already, or will read during calls, wait in its own queue, where no notifier sees
    // them.
    m_nextTurn.start(0);
    if (waitUntilReady(m_bus.get(), deadline))
        return m_bus.get();
    console::print("The " + nameOf(m_kind) + " does not answer");
    return nullptr;
}

void DBusSession::processMessages()
{
    const auto end = std::chrono::steady_clock::now() + longestTurn;
    while (m_bus && std::chrono::steady_clock::now() < end) {
        const int result = sd_bus_process(m_bus.get(), nullptr);
        if (result < 0)
            noteLoss();
        while (!m_afterMessage.empty()) {
            const auto work = std::move(m_afterMessage.front());
            m_afterMessage.pop_front();
            work();
        }
        if (result <= 0)
            break;
    }
    noteReturn();
    scheduleNextTurn();
}

void DBusSession::noteLoss()
{
    watch(m_readable, false);
    watch(m_writable, false);
    for (auto &[number, installation] : m_installations)
        installation.slot.reset();
    m_bus.reset();
    retryLater();
    if (!std::exchange(m_isLost, true))
        console::print("Lost the " + nameOf(m_kind) + "; trying to reach it again");
}

void DBusSession::noteReturn()
{
    if (m_isLost && m_bus && sd_bus_is_ready(m_bus.get()) > 0) {
        m_isLost = false;
        m_retries = 0;
        console::print("The " + nameOf(m_kind) + " is back");
    }
}

void DBusSession::retryLater()
{
    using namespace std::chrono_literals;
    constexpr std::array<std::chrono::milliseconds, 6> pauses = {200ms, 500ms, 1s, 2s, 5s, 10s};
    const auto pause = pauses[std::min(m_retries++, pauses.size() - 1)];
    m_retry.start(std::min(pause, m_longestPause));
}

void DBusSession::scheduleNextTurn()
{
    m_nextTurn.stop();
    if (!m_bus)
        return;
    const int events = sd_bus_get_events(m_bus.get());
    watch(m_readable, true);
    watch(m_writable, events > 0 && (events & POLLOUT) != 0);

    std::uint64_t due = std::numeric_limits<std::uint64_t>::max(); // monotonic clock, microseconds
    if (sd_bus_get_timeout(m_bus.get(), &due) < 0 || !m_afterMessage.empty())
        due = 0;
    if (due == std::numeric_limits<std::uint64_t>::max())
        return;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto left = std::chrono::microseconds(due) - now;
    m_nextTurn.start(std::max(std::chrono::ceil<std::chrono::milliseconds>(left), std::chrono::milliseconds(0)));
}

void DBusSession::watch(QSocketNotifier &notifier, bool isWanted)
{
    const int socket = isWanted ? sd_bus_get_fd(m_bus.get()) : -1;
    if (socket >= 0 && notifier.socket() != socket)
        notifier.setSocket(socket);
    if (notifier.isEnabled() != (socket >= 0))
        notifier.setEnabled(socket >= 0);
}

} // namespace ambertide
