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

/// Closing a connection never waits; messages that have not been sent by then are lost.
using SdBusConnection = std::unique_ptr<sd_bus, Release<&sd_bus_close_unref>>;
using SdBusMessage = std::unique_ptr<sd_bus_message, Release<&sd_bus_message_unref>>;
/// A match, an exported object or a pending call, which ends with its owner.
using SdBusSlot = std::unique_ptr<sd_bus_slot, Release<&sd_bus_slot_unref>>;

using SdBusDeadline = std::chrono::steady_clock::time_point;

enum class SdBusKind { session, system };

/// Starts a connection, without waiting for the bus to answer. Messages may be queued at once. Null when there is no
/// such bus. Of signals only broadcasts arrive, and those of the bus itself.
SdBusConnection openSdBus(SdBusKind kind);

/// Handles messages until `isDone` returns true. False when the deadline came first or the connection has ended.
bool processUntil(sd_bus *bus, SdBusDeadline deadline, const std::function<bool()> &isDone);

/// Waits until the bus has answered. Only then do calls keep to their time-outs: before, sd-bus waits for up to 90 s.
bool waitUntilReady(sd_bus *bus, SdBusDeadline deadline);

/// Sends `call` on a connection that is ready and waits for its reply. Null on any failure; `error` then receives the
/// (positive) errno, which is ETIMEDOUT when the deadline came first.
SdBusMessage callUntil(sd_bus *bus, sd_bus_message *call, SdBusDeadline deadline, int *error = nullptr);

/// The unique name of the connection that owns `name`: empty when nobody does, nothing when the bus did not say.
std::optional<std::string> ownerOfName(sd_bus *bus, const std::string &name, SdBusDeadline deadline);

/// The match rule for signals that meet these conditions, such as {"member", "Posted"}. A condition without a value is
/// left out.
std::string signalRule(std::initializer_list<std::pair<const char *, std::string_view>> conditions);

/// Calls `handler` for the messages that match. Does not wait for the bus to confirm the match.
SdBusSlot addMatch(sd_bus *bus, const std::string &rule, sd_bus_message_handler_t handler, void *context);

} // namespace ambertide
