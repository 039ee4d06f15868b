#pragma once

#include <functional>
#include <utility>

namespace ambertide {

/// One registration of an observer. Destroying or releasing it ends the registration, after which the observer is not
/// called again. Main thread. The centre that gave it must outlive it.
class [[nodiscard]] Observation
{
public:
    Observation() = default;
    explicit Observation(std::function<void()> unregister) : m_unregister(std::move(unregister)) {}
    Observation(Observation &&other) noexcept : m_unregister(std::exchange(other.m_unregister, {})) {}
    Observation &operator=(Observation &&other) noexcept
    {
        if (this != &other) {
            release();
            m_unregister = std::exchange(other.m_unregister, {});
        }
        return *this;
    }
    Observation(const Observation &) = delete;
    Observation &operator=(const Observation &) = delete;
    ~Observation() { release(); }

    void release()
    {
        if (auto unregister = std::exchange(m_unregister, {}))
            unregister();
    }

private:
    std::function<void()> m_unregister;
};

} // namespace ambertide
