#pragma once

#include "platform/SystemWake.h"

#include <map>

namespace ambertide {

class FakeSystemWake final : public SystemWake
{
public:
    Observation observe(std::function<void()> handler) override
    {
        const int number = m_next++;
        m_handlers.emplace(number, std::move(handler));
        return Observation([this, number] { m_handlers.erase(number); });
    }
    void wakeUp()
    {
        const auto handlers = m_handlers;
        for (const auto &[number, handler] : handlers)
            handler();
    }

private:
    int m_next = 0;
    std::map<int, std::function<void()>> m_handlers;
};

} // namespace ambertide
