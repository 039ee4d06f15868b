#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

namespace ambertide {

/// One registration of an observer. Destroying or releasing it ends the registration, after which the observer is not
/// called again. Main thread.
class [[nodiscard]] Observation
{
public:
    Observation() = default;
    explicit Observation(std::function<void()> unregister)
        : m_registration(nullptr, [unregister = std::move(unregister)](std::nullptr_t) { unregister(); })
    {
    }
    Observation(Observation &&other) = default;
    Observation &operator=(Observation &&other) = default;

    void release() { m_registration.reset(); }

private:
    std::shared_ptr<void> m_registration;
};

} // namespace ambertide
