#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace ambertide {

/// Does work on a thread of its own, `gatheringTime` after the first request for it, once for all requests that have
/// come by then. Any thread; only finish() and the destructor wait for the work.
class GatheredWork
{
public:
    /// `work` may make requests itself.
    GatheredWork(std::chrono::milliseconds gatheringTime, std::function<void()> work);
    /// Does at once what has been requested, and waits for that.
    ~GatheredWork() = default;

    void request();
    /// Has what has been requested done at once, and waits for that, for at most `limit`.
    void finish(std::chrono::milliseconds limit);

private:
    void run(const std::stop_token &stop);
    bool isWaiting() const { return m_requested != m_done; }

    const std::chrono::milliseconds m_gatheringTime;
    const std::function<void()> m_work;
    std::mutex m_lock; ///< guards all below; never held while the work is done
    std::condition_variable_any m_changed;
    std::uint64_t m_requested = 0; ///< how many requests have come
    std::uint64_t m_done = 0;      ///< how many of them are done
    bool m_isUrgent = false;
    std::jthread m_thread; ///< last, so that it ends before what it uses
};

} // namespace ambertide
