#pragma once

#include <atomic>
#include <chrono>
#include <coroutine>
#include <memory>
#include <utility>

namespace ambertide {

class TaskExecutor;

/// What a task, its handles and its pending continuation share. Lives as long as any of them.
struct TaskState
{
    explicit TaskState(TaskExecutor &taskExecutor) : executor(taskExecutor) {}

    TaskExecutor &executor;
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> hasEnded = false; ///< the executor may be gone from then on
    std::coroutine_handle<> frame;      ///< outermost coroutine of the body; written once, before the task is queued
};

/// A suspended task, waiting in some queue to be resumed.
///
/// Exactly one exists for a suspended task. Resuming it runs the task on the calling thread up to its next suspension;
/// dropping it unresumed destroys the task and all that its body holds, so drop it outside of any lock.
class Continuation
{
public:
    Continuation(std::shared_ptr<TaskState> task, std::coroutine_handle<> frame)
        : m_task(std::move(task)), m_frame(frame)
    {
    }
    Continuation(Continuation &&other) = default;
    Continuation &operator=(Continuation &&other) noexcept;
    ~Continuation();

    void resume();
    const std::shared_ptr<TaskState> &task() const { return m_task; }

private:
    std::shared_ptr<TaskState> m_task; ///< null once resumed or moved from
    std::coroutine_handle<> m_frame;
};

/// Port: runs tasks on a background thread and tells them the time. Everything may be called from any thread.
class TaskExecutor
{
public:
    virtual ~TaskExecutor() = default;

    /// Runs the continuation on a background thread as soon as one is free, in order of the calls.
    virtual void resume(Continuation continuation) = 0;

    /// Monotonic time since some moment in the past; stands still while the machine sleeps.
    virtual std::chrono::nanoseconds now() const = 0;

    /// Runs it in the background after `delay`, measured by now(); at once if that is negative, and as soon as the task
    /// is cancelled.
    virtual void resumeAfter(std::chrono::nanoseconds delay, Continuation continuation) = 0;

    /// Runs the continuation on the main thread, in order of the calls.
    virtual void resumeOnMain(Continuation continuation) = 0;

    /// Wakes this task, which has been marked as cancelled, if it is asleep.
    virtual void wakeCancelled(const TaskState &task) = 0;

    /// Puts the calling thread to sleep.
    virtual void blockThread(std::chrono::nanoseconds duration) = 0;
};

} // namespace ambertide
