#pragma once

#include "base/Observation.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace ambertide {

struct RunningApplication
{
    std::int64_t processIdentifier = 0; ///< 0 if the system does not tell it
};

/// Port: the running copies of an application in this user's session. Main thread; every call returns within a second,
/// whatever the other copies are doing.
class RunningApplications
{
public:
    virtual ~RunningApplications() = default;

    /// All running copies, including this one; only this one where the system cannot tell (no session service). If
    /// several copies ask at the same moment, exactly one of them finds no other.
    virtual std::vector<RunningApplication> withIdentifier(std::string_view bundleIdentifier) = 0;

    /// `handler` is called when another copy may have become the running one, because the session service was lost and
    /// has come back.
    virtual Observation observeOthers(std::function<void()> /*handler*/) { return {}; }

    /// Asks that copy to come to the front, whichever application is active. Does not learn whether it did.
    virtual void activate(const RunningApplication &application) = 0;

    virtual std::int64_t currentProcessIdentifier() const = 0;
};

} // namespace ambertide
