#include "base/Task.h"

#include <utility>

namespace ambertide {

namespace {

/// The outermost frame of a task. It keeps the body, and with it the body's captures, alive until the body has ended.
struct RootFrame
{
    struct promise_type
    {
        RootFrame get_return_object() { return {std::coroutine_handle<promise_type>::from_promise(*this)}; }
        std::suspend_always initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() const noexcept { std::terminate(); }
    };
    std::coroutine_handle<> handle;
};

RootFrame runBody(TaskContext context, Task::Body body)
{
    try {
        co_await body(context);
    } catch (const CancellationError &) {
        // This is how a cancelled body ends.
    }
    context.markEnded();
}

} // namespace

Continuation &Continuation::operator=(Continuation &&other) noexcept
{
    std::swap(m_task, other.m_task);
    std::swap(m_frame, other.m_frame);
    return *this;
}

Continuation::~Continuation()
{
    if (!m_task)
        return;
    m_task->hasEnded = true;
    m_task->frame.destroy();
}

void Continuation::resume()
{
    const auto task = std::move(m_task);
    m_frame.resume();
}

void TaskContext::throwIfCancelled() const
{
    if (isCancelled())
        throw CancellationError();
}

void TaskContext::Sleep::await_suspend(std::coroutine_handle<> frame)
{
    // Once handed over, the task may run on and destroy this object before the call returns.
    auto &executor = task->executor;
    executor.resumeAfter(duration, Continuation(task, frame));
}

void TaskContext::Sleep::await_resume() const
{
    if (task->isCancelled)
        throw CancellationError();
}

void TaskContext::HopToMain::await_suspend(std::coroutine_handle<> frame)
{
    auto &executor = task->executor;
    executor.resumeOnMain(Continuation(task, frame));
}

Continuation Task::prepare(TaskExecutor &executor, Body body)
{
    auto task = std::make_shared<TaskState>(executor);
    task->frame = runBody(TaskContext(task), std::move(body)).handle;
    const auto frame = task->frame;
    return {std::move(task), frame};
}

Task Task::start(TaskExecutor &executor, Body body)
{
    auto continuation = prepare(executor, std::move(body));
    Task handle(continuation.task());
    executor.resume(std::move(continuation));
    return handle;
}

Task Task::startOnMain(TaskExecutor &executor, Body body)
{
    auto continuation = prepare(executor, std::move(body));
    Task handle(continuation.task());
    executor.resumeOnMain(std::move(continuation));
    return handle;
}

void Task::cancel() const
{
    if (m_task && !m_task->isCancelled.exchange(true) && !m_task->hasEnded)
        m_task->executor.wakeCancelled(*m_task);
}

void TaskSlot::cancel()
{
    Task task;
    {
        const std::scoped_lock lock(m_lock);
        task = m_task;
    }
    task.cancel();
}

void TaskSlot::store(Task task)
{
    {
        const std::scoped_lock lock(m_lock);
        std::swap(m_task, task);
    }
    task.cancel();
}

} // namespace ambertide
