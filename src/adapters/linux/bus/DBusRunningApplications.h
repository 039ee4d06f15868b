#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "base/Observers.h"
#include "ports/RunningApplications.h"

#include <optional>
#include <string>

namespace ambertide {

/// The running copy is the owner of the well-known name that equals the bundle identifier. withIdentifier() claims that
/// name for this process, so the bus itself decides which copy was first. Other copies are never asked anything, so one
/// that hangs cannot delay this one.
class DBusRunningApplications final : public RunningApplications
{
public:
    /// `session` must outlive this.
    explicit DBusRunningApplications(DBusSession &session);

    std::vector<RunningApplication> withIdentifier(std::string_view bundleIdentifier) override;
    Observation observeOthers(std::function<void()> handler) override { return m_others.observe(std::move(handler)); }
    /// Activates the copy that withIdentifier() found, whichever is passed, and hands it the activation token that this
    /// process was started with: without one, a compositor would not let it come to the front.
    void activate(const RunningApplication &application) override;
    std::int64_t currentProcessIdentifier() const override;

private:
    void claimName();
    void noteClaim(sd_bus_message *reply);
    std::optional<std::int64_t> processOf(sd_bus *bus, const std::string &connection, SdBusDeadline deadline) const;

    DBusSession &m_session;
    std::string m_name;
    Observation m_connecting;
    Observation m_claim;
    bool m_isOwnerLookedUp = false; ///< withIdentifier() itself sees who has the name on this connection
    Observers<> m_others;
};

} // namespace ambertide
