#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace ambertide {

/// Work that is done on a thread of its own, some time after the first request for it, and once for all requests that
/// came meanwhile. Any thread; no call waits for the work except as said.
class GatheredWork
{
public:
    /// `work` may make requests itself.
    GatheredWork(std::chrono::milliseconds gatheringTime, std::function<void()> work);
    /// Does at once, and waits for, what is still waiting.
    ~GatheredWork() = default;

    void request();
    /// Has what is waiting done at once, and waits for that, for at most `limit`.
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
