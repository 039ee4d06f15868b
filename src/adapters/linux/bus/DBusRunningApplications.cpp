#include "adapters/linux/bus/DBusRunningApplications.h"

#include "adapters/linux/bus/BusNames.h"
#include "base/Console.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <utility>

namespace ambertide {

namespace {

constexpr std::chrono::milliseconds timeLimit{500};
/// The owner may end between two questions about it; the name is then claimed anew.
constexpr int mostAttempts = 3;

/// D-Bus Specification, "org.freedesktop.DBus.RequestName".
constexpr std::uint32_t primaryOwner = 1;
constexpr std::uint32_t alreadyOwner = 4;

bool isOwn(sd_bus *bus, const std::string &connection)
{
    const char *own = nullptr;
    return sd_bus_get_unique_name(bus, &own) >= 0 && connection == own;
}

} // namespace

std::vector<RunningApplication> DBusRunningApplications::withIdentifier(std::string_view bundleIdentifier)
{
    const RunningApplication self{currentProcessIdentifier()};
    m_name = bundleIdentifier;
    if (sd_bus_service_name_is_valid(m_name.c_str()) <= 0)
        return {self};
    const auto deadline = std::chrono::steady_clock::now() + timeLimit;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        claimName();
        sd_bus *bus = m_session.readyBus(deadline);
        const auto owner = bus != nullptr ? ownerOfName(bus, m_name, deadline) : std::nullopt;
        if (!owner || isOwn(bus, *owner))
            return {self};
        const auto process = owner->empty() ? std::nullopt : processOf(bus, *owner, deadline);
        if (process)
            return {self, RunningApplication{*process}};
    }
    return {self};
}

void DBusRunningApplications::claimName()
{
    const auto receive = [](sd_bus_message *reply, void *context, sd_bus_error *) {
        static_cast<DBusRunningApplications *>(context)->noteClaim(reply);
        return 0;
    };
    m_claim = m_session.install([this, receive](sd_bus *bus) {
        sd_bus_slot *slot = nullptr;
        sd_bus_request_name_async(bus, &slot, m_name.c_str(), 0, receive, this);
        return SdBusSlot(slot);
    });
}

void DBusRunningApplications::noteClaim(sd_bus_message *reply)
{
    std::uint32_t result = 0;
    if (sd_bus_message_read_basic(reply, 'u', static_cast<void *>(&result)) <= 0)
        return;
    const bool isOwner = result == primaryOwner || result == alreadyOwner;
    if (std::exchange(m_ownsName, isOwner) && !isOwner)
        console::print("Another program has taken the name " + m_name + " on the session bus");
}

std::optional<std::int64_t> DBusRunningApplications::processOf(sd_bus *bus, const std::string &connection,
                                                               SdBusDeadline deadline) const
{
    const auto reply = askBus(bus, "GetConnectionUnixProcessID", connection, deadline);
    std::uint32_t process = 0;
    if (!reply || sd_bus_message_read_basic(reply.get(), 'u', static_cast<void *>(&process)) <= 0)
        return std::nullopt;
    // Copies in sandboxes of their own may have the same number.
    return process == currentProcessIdentifier() ? 0 : std::int64_t{process};
}

void DBusRunningApplications::activate(const RunningApplication &)
{
    sd_bus_message *message = nullptr;
    if (m_session.bus() == nullptr ||
        sd_bus_message_new_method_call(m_session.bus(), &message, m_name.c_str(), bus_names::applicationPath,
                                       bus_names::applicationInterface, "Activate") < 0)
        return;
    const SdBusMessage owner(message);
    sd_bus_message_set_expect_reply(message, 0);
    sd_bus_message_set_auto_start(message, 0);
    const char *token = std::getenv("XDG_ACTIVATION_TOKEN");
    const int result = token != nullptr
                           ? sd_bus_message_append(message, "a{sv}", 1, bus_names::activationTokenKey, "s", token)
                           : sd_bus_message_append(message, "a{sv}", 0);
    if (result >= 0)
        m_session.send(owner);
}

std::int64_t DBusRunningApplications::currentProcessIdentifier() const { return getpid(); }

} // namespace ambertide
