#pragma once

#include "base/Observation.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace ambertide {

/// The observers of one event. Main thread. Observers may register, unregister and notify from within a call; one that
/// registers during a notification is first called for the next. Observations may outlive this object.
template <typename... Arguments>
class Observers
{
public:
    using Handler = std::function<void(Arguments...)>;

    Observation observe(Handler handler)
    {
        const auto number = m_nextNumber++;
        m_handlers->emplace(number, std::move(handler));
        return Observation([handlers = std::weak_ptr(m_handlers), number] {
            if (const auto present = handlers.lock())
                present->erase(number);
        });
    }

    /// Calls all of them, in the order of their registration, before it returns.
    void notify(Arguments... arguments)
    {
        const auto handlers = *m_handlers;
        for (const auto &[number, handler] : handlers) {
            if (m_handlers->contains(number))
                handler(arguments...);
        }
    }

private:
    using Handlers = std::map<std::uint64_t, Handler>;

    std::uint64_t m_nextNumber = 0;
    std::shared_ptr<Handlers> m_handlers = std::make_shared<Handlers>();
};

} // namespace ambertide
