#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "adapters/linux/displays/shared/GuardianMessage.h"

#include <string_view>

namespace ambertide::tint_name {

/// Whoever tints GNOME's displays owns this name on the session bus; of several programs, the newest. The bus takes it
/// back when the owner's connection ends, after it has delivered all that was sent on it.
constexpr char name[] = "me.tovanu.Ambertide.Tint";

/// Takes the name, and queues for it when another copy takes it away. The request goes out with the next message.
void acquire(sd_bus *bus);
void release(sd_bus *bus);

/// The number that stands for the connection with this unique name in messages to the guardian; never 0.
GuardianMessage claimOf(std::string_view uniqueName);

} // namespace ambertide::tint_name
