#pragma once

#include "base/Release.h"

#include <systemd/sd-bus.h>

#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ambertide {

/// Letting go of a connection never waits; what it has not sent by then is lost.
using SdBusConnection = std::unique_ptr<sd_bus, Release<&sd_bus_close_unref>>;
using SdBusMessage = std::unique_ptr<sd_bus_message, Release<&sd_bus_message_unref>>;
/// A match, an exported object or a call under way: ends when let go.
using SdBusSlot = std::unique_ptr<sd_bus_slot, Release<&sd_bus_slot_unref>>;

using SdBusDeadline = std::chrono::steady_clock::time_point;

enum class SdBusKind { session, system };

/// Starts a connection, without waiting for the bus to answer. Messages may be queued at once. Null when there is no
/// such bus.
SdBusConnection openSdBus(SdBusKind kind);

/// Handles messages until `isDone`. False when the deadline came first or the connection has ended.
bool processUntil(sd_bus *bus, SdBusDeadline deadline, const std::function<bool()> &isDone);

/// Waits until the bus has answered, after which calls keep to their time-outs; before it, sd-bus waits for up to 90 s.
bool waitUntilReady(sd_bus *bus, SdBusDeadline deadline);

/// Sends `call` on a connection that is ready and waits for its reply. Null on any failure, whose errno (positive) goes
/// to `error`; ETIMEDOUT is the deadline.
SdBusMessage callUntil(sd_bus *bus, sd_bus_message *call, SdBusDeadline deadline, int *error = nullptr);

/// The unique name of the connection that owns `name`: empty when nobody does, nothing when the bus did not say.
std::optional<std::string> ownerOfName(sd_bus *bus, const std::string &name, SdBusDeadline deadline);

/// The rule that finds signals by these conditions, such as {"member", "Posted"}; those without a value are left out.
std::string signalRule(std::initializer_list<std::pair<const char *, std::string_view>> conditions);

/// Calls `handler` for the messages of the rule. Does not wait for the bus to confirm it.
SdBusSlot addMatch(sd_bus *bus, const std::string &rule, sd_bus_message_handler_t handler, void *context);

} // namespace ambertide
