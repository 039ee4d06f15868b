#pragma once

#include "base/Observers.h"
#include "ports/SystemWake.h"

namespace ambertide {

class FakeSystemWake final : public SystemWake
{
public:
    Observation observe(std::function<void()> handler) override { return m_observers.observe(std::move(handler)); }
    void wakeUp() { m_observers.notify(); }

private:
    Observers<> m_observers;
};

} // namespace ambertide
