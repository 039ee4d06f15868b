#pragma once

#include "base/Observation.h"

#include <functional>

namespace ambertide {

/// Port: calls its observers when the machine has woken from sleep, and again one and three seconds later, since some
/// displays come up after the machine. Main thread. Silent on systems that cannot tell.
class SystemWake
{
public:
    virtual ~SystemWake() = default;

    virtual Observation observe(std::function<void()> handler) = 0;
};

} // namespace ambertide
