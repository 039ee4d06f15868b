#pragma once

#include <coroutine>
#include <exception>
#include <utility>

namespace ambertide {

/// A coroutine that another coroutine of the same task awaits: the straight-line body of asynchronous work.
///
/// It starts when it is awaited, is awaited at most once, and hands whatever it throws to its awaiter. The object owns
/// the frame; destroying it destroys everything that the suspended body holds.
class [[nodiscard]] Async
{
public:
    struct promise_type;
    using Handle = std::coroutine_handle<promise_type>;

    struct FinalAwaiter
    {
        bool await_ready() const noexcept { return false; }
        std::coroutine_handle<> await_suspend(Handle finished) const noexcept;
        void await_resume() const noexcept {}
    };

    struct promise_type
    {
        std::coroutine_handle<> awaiter;
        std::exception_ptr failure;

        Async get_return_object() { return Async(Handle::from_promise(*this)); }
        std::suspend_always initial_suspend() const noexcept { return {}; }
        FinalAwaiter final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() noexcept { failure = std::current_exception(); }
    };

    Async(Async &&other) noexcept : m_frame(std::exchange(other.m_frame, {})) {}
    Async(const Async &) = delete;
    Async &operator=(const Async &) = delete;
    Async &operator=(Async &&) = delete;
    ~Async()
    {
        if (m_frame)
            m_frame.destroy();
    }

    bool await_ready() const noexcept { return false; }
    std::coroutine_handle<> await_suspend(std::coroutine_handle<> awaiter) noexcept
    {
        m_frame.promise().awaiter = awaiter;
        return m_frame;
    }
    void await_resume() const
    {
        if (m_frame.promise().failure)
            std::rethrow_exception(m_frame.promise().failure);
    }

private:
    explicit Async(Handle frame) : m_frame(frame) {}

    Handle m_frame;
};

inline std::coroutine_handle<> Async::FinalAwaiter::await_suspend(Handle finished) const noexcept
{
    return finished.promise().awaiter;
}

} // namespace ambertide
