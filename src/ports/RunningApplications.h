#pragma once

#include "base/Observation.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace ambertide {

struct RunningApplication
{
    std::int64_t processIdentifier = 0; ///< 0 when the system does not tell
};

/// Port: the running copies of an application in this user's session. Main thread; every call returns within a second,
/// whatever the other copies are doing.
class RunningApplications
{
public:
    virtual ~RunningApplications() = default;

    /// All running copies, this one among them. Where copies cannot be told (no session service), this one alone. Of
    /// copies that ask at the same moment exactly one finds no other.
    virtual std::vector<RunningApplication> withIdentifier(std::string_view bundleIdentifier) = 0;

    /// Called when another copy may have become the running one: the session service was lost and has returned.
    virtual Observation observeOthers(std::function<void()> /*handler*/) { return {}; }

    /// Asks that copy to come to the front, ignoring other applications. Fire and forget.
    virtual void activate(const RunningApplication &application) = 0;

    virtual std::int64_t currentProcessIdentifier() const = 0;
};

} // namespace ambertide
