#include "adapters/linux/bus/DBusRunningApplications.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/bus/SdBusWriter.h"
#include "base/Console.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <utility>

namespace ambertide {

namespace {

constexpr std::chrono::milliseconds timeLimit{500};
/// The owner may exit between two queries about it; the name is then claimed again.
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

DBusRunningApplications::DBusRunningApplications(DBusSession &session)
    : m_session(session), m_connecting(m_session.install([this](sd_bus *) {
          m_isOwnerLookedUp = false;
          return SdBusSlot();
      }))
{
}

std::vector<RunningApplication> DBusRunningApplications::withIdentifier(std::string_view bundleIdentifier)
{
    const RunningApplication self{currentProcessIdentifier()};
    m_name = bundleIdentifier;
    if (sd_bus_service_name_is_valid(m_name.c_str()) <= 0)
        return {self};
    const auto deadline = std::chrono::steady_clock::now() + timeLimit;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        claimName();
        m_isOwnerLookedUp = m_session.bus() != nullptr;
        sd_bus *bus = m_session.readyBus(deadline);
        const auto owner = bus != nullptr ? ownerOfName(bus, m_name, deadline) : std::nullopt;
        m_isOwnerLookedUp = owner.has_value();
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
    m_claim = m_session.requestName(m_name, [this](sd_bus_message *reply) { noteClaim(reply); });
}

void DBusRunningApplications::noteClaim(sd_bus_message *reply)
{
    const auto result = SdBusReader(reply).uint32();
    if (!result)
        return;
    const bool isOwner = result == primaryOwner || result == alreadyOwner;
    if (isOwner || m_isOwnerLookedUp)
        return;
    console::print("Another program has taken the name " + m_name + " on the session bus");
    m_session.afterMessage([this] { m_others.notify(); });
}

std::optional<std::int64_t> DBusRunningApplications::processOf(sd_bus *bus, const std::string &connection,
                                                               SdBusDeadline deadline) const
{
    const auto call = SdBusWriter::busCall(bus, "GetConnectionUnixProcessID").add(connection).take();
    const auto reply = callUntil(bus, call.get(), deadline);
    const auto process = reply ? SdBusReader(reply.get()).uint32() : std::nullopt;
    if (!process)
        return std::nullopt;
    // A copy in another sandbox may have the same number as this one; 0 stands for unknown.
    return process == currentProcessIdentifier() ? 0 : std::int64_t{*process};
}

void DBusRunningApplications::activate(const RunningApplication &)
{
    UserInfo platformData;
    if (const char *token = std::getenv("XDG_ACTIVATION_TOKEN"))
        platformData.emplace(bus_names::activationTokenKey, token);
    m_session.send(SdBusWriter::call(m_session.bus(), m_name.c_str(), bus_names::applicationPath,
                                     bus_names::applicationInterface, "Activate")
                       .withoutStarting()
                       .add(platformData)
                       .take());
}

std::int64_t DBusRunningApplications::currentProcessIdentifier() const { return getpid(); }

} // namespace ambertide
