#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "ports/ApplicationConnection.h"

#include <chrono>
#include <string>
#include <string_view>

namespace ambertide {

/// Reaches the application over the session bus, to which each call makes a connection. The time limit runs from the
/// construction of this object.
class SdBusApplicationConnection final : public ApplicationConnection
{
public:
    static constexpr std::chrono::milliseconds timeLimit{1500};

    Outcome post(const Notification &notification) override;
    Answer request(const Notification &notification, std::string_view answer) override;

private:
    /// On success `m_owner` is the unique name of the application's connection.
    Outcome connect();

    SdBusDeadline m_deadline = std::chrono::steady_clock::now() + timeLimit;
    SdBusConnection m_bus;
    std::string m_owner;
};

} // namespace ambertide
