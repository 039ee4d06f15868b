#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "adapters/linux/displays/shared/GuardianMessage.h"

#include <string_view>

namespace ambertide::tint_name {

/// Whoever tints GNOME's displays owns this name on the session bus, the newest one first. The bus takes it back when
/// the owner's connection ends, after it has delivered all that came from there.
constexpr char name[] = "me.tovanu.Ambertide.Tint";

/// Takes the name, and waits in a queue when another copy takes it away. Sent with what is sent next.
void acquire(sd_bus *bus);
void release(sd_bus *bus);

/// What stands for the connection of that unique name in messages to the guardian; never 0 for one.
GuardianMessage claimOf(std::string_view uniqueName);

} // namespace ambertide::tint_name
