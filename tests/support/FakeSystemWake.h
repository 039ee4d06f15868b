#pragma once

#include "ports/SystemWake.h"

#include <functional>
#include <map>
#include <memory>

namespace ambertide {

class FakeSystemWake final : public SystemWake
{
public:
    Observation observe(std::function<void()> handler) override
    {
        const int number = m_next++;
        m_handlers->emplace(number, std::move(handler));
        return Observation([handlers = m_handlers, number] { handlers->erase(number); });
    }
    void wakeUp()
    {
        const auto handlers = *m_handlers;
        for (const auto &[number, handler] : handlers)
            handler();
    }

private:
    int m_next = 0;
    /// Shared, because a display manager outlives the test that made it: the signal handler holds the newest one.
    std::shared_ptr<std::map<int, std::function<void()>>> m_handlers =
        std::make_shared<std::map<int, std::function<void()>>>();
};

} // namespace ambertide
