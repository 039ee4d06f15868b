#pragma once

#include <compare>
#include <string_view>

namespace ambertide {

/// The order of two version texts, as the appcast's standard comparator has it: 1.10 is newer than 1.9, 1.0 equals
/// 1.0.0, 1.0b1 comes before 1.0, and what follows a '-' does not count. Any text may be compared; one without a digit
/// counts as 0. Numbers may have any length. Linear in time; any thread.
std::weak_ordering compareVersions(std::string_view left, std::string_view right);

} // namespace ambertide
