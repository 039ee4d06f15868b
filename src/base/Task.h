#pragma once

#include "base/Async.h"
#include "base/TaskExecutor.h"

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

namespace ambertide {

/// Thrown by a sleep or a check inside the body of a task that has been cancelled. It ends the task and goes no
/// further.
struct CancellationError : std::exception
{
    const char *what() const noexcept override { return "the task was cancelled"; }
};

/// What the body of a task can ask about it and of its executor. Cheap to copy; belongs to one task.
class TaskContext
{
public:
    explicit TaskContext(std::shared_ptr<TaskState> task) : m_task(std::move(task)) {}

    bool isCancelled() const { return m_task->isCancelled; }

    /// Throws CancellationError when the task has been cancelled.
    void throwIfCancelled() const;

    struct Sleep
    {
        std::shared_ptr<TaskState> task;
        std::chrono::nanoseconds duration;

        bool await_ready() const { return task->isCancelled; }
        void await_suspend(std::coroutine_handle<> frame);
        void await_resume() const;
    };

    struct HopToMain
    {
        std::shared_ptr<TaskState> task;

        bool await_ready() const { return false; }
        void await_suspend(std::coroutine_handle<> frame);
        void await_resume() const {}
    };

    /// `co_await sleep(d)`: continues in the background after `d`, or throws CancellationError as soon as the task is
    /// cancelled.
    Sleep sleep(std::chrono::nanoseconds duration) const { return {m_task, duration}; }

    /// `co_await onMain()`: continues on the main thread, even if the task has been cancelled.
    HopToMain onMain() const { return {m_task}; }

    /// Called by the outermost coroutine, as its last act.
    void markEnded() const { m_task->hasEnded = true; }

private:
    std::shared_ptr<TaskState> m_task;
};

/// Handle of an asynchronous task. Copyable; dropping it neither cancels the task nor waits for it. Any thread may use
/// it, but one handle object must not be written while another thread uses it (TaskSlot is for that).
class Task
{
public:
    /// The body may be a lambda with captures: they live as long as the task. Anything but a CancellationError that
    /// leaves the body ends the process.
    using Body = std::function<Async(TaskContext)>;

    Task() = default;

    /// Starts the body in the background. Neither this nor the next runs any of it itself: it runs later, or on another
    /// thread.
    static Task start(TaskExecutor &executor, Body body);
    /// Starts the body on the main thread.
    static Task startOnMain(TaskExecutor &executor, Body body);

    explicit operator bool() const { return m_task != nullptr; }

    /// Marks the task as cancelled and ends its sleep. Does nothing on an empty handle or a task that has ended.
    void cancel() const;

private:
    explicit Task(std::shared_ptr<TaskState> task) : m_task(std::move(task)) {}
    static Continuation prepare(TaskExecutor &executor, Body body);

    std::shared_ptr<TaskState> m_task;
};

/// Holds one task, for use from several threads. A task that is replaced is cancelled, so that only the stored one
/// continues.
class TaskSlot
{
public:
    void cancel();
    void store(Task task);

private:
    std::mutex m_lock;
    Task m_task;
};

} // namespace ambertide
