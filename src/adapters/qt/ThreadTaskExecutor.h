#pragma once

#include "base/TaskExecutor.h"

#include <QObject>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace ambertide {

/// Runs every task on one background thread, which sleeps until the next is due: a tick of a task is one wake-up of the
/// process. Tasks that block (on a display server that does not answer) hold up the others, but never the main thread.
/// What continues on the main thread is run by Qt's event loop.
///
/// Create and destroy on the main thread. Destroying it waits until the task that is running suspends, and destroys all
/// others where they are suspended.
class ThreadTaskExecutor final : public TaskExecutor
{
public:
    ThreadTaskExecutor();
    ~ThreadTaskExecutor() override;

    void resume(Continuation continuation) override;
    std::chrono::nanoseconds now() const override { return Clock::now().time_since_epoch(); }
    void resumeAfter(std::chrono::nanoseconds delay, Continuation continuation) override;
    void resumeOnMain(Continuation continuation) override;
    void wakeCancelled(const TaskState &task) override;
    void blockThread(std::chrono::nanoseconds duration) override;

    /// Waits until no task is running or ready to run, for at most `limit`; sleeping tasks do not count. False when the
    /// limit came first.
    bool waitUntilIdle(std::chrono::milliseconds limit);

private:
    using Clock = std::chrono::steady_clock;
    struct Sleeper
    {
        Clock::time_point due;
        Continuation continuation;
    };

    void run();
    void collectDueSleepers();
    Clock::time_point nextDue() const;

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::condition_variable m_idle;
    std::deque<Continuation> m_ready;
    std::vector<Sleeper> m_sleepers; ///< a handful, so a plain list in order of arrival
    Clock::time_point m_wakesAt = Clock::time_point::max();
    bool m_isRunning = false;
    bool m_shouldEnd = false;
    QObject m_main; ///< receives the events that continue tasks on the main thread
    std::thread m_thread;
};

} // namespace ambertide
