#include "adapters/qt/ThreadTaskExecutor.h"

#include <QCoreApplication>

#include <algorithm>
#include <memory>
#include <utility>

namespace ambertide {

ThreadTaskExecutor::ThreadTaskExecutor() : m_thread([this] { run(); }) {}

ThreadTaskExecutor::~ThreadTaskExecutor()
{
    {
        const std::scoped_lock lock(m_lock);
        m_shouldEnd = true;
    }
    m_changed.notify_one();
    m_thread.join();
    // A task that is dropped may call back into this object while it is destroyed, so by then the lists must be intact
    // and unlocked.
    for (;;) {
        QCoreApplication::removePostedEvents(&m_main);
        std::deque<Continuation> ready;
        std::vector<Sleeper> sleepers;
        {
            const std::scoped_lock lock(m_lock);
            ready.swap(m_ready);
            sleepers.swap(m_sleepers);
        }
        if (ready.empty() && sleepers.empty())
            break;
    }
}

void ThreadTaskExecutor::resume(Continuation continuation)
{
    {
        const std::scoped_lock lock(m_lock);
        m_ready.push_back(std::move(continuation));
    }
    m_changed.notify_one();
}

void ThreadTaskExecutor::resumeAfter(std::chrono::nanoseconds delay, Continuation continuation)
{
    bool mustWake = false;
    {
        const std::scoped_lock lock(m_lock);
        // A cancellation from here on finds the task among the sleepers; an earlier one shows in its `isCancelled`.
        const bool isCancelled = continuation.task()->isCancelled;
        const auto due = isCancelled ? Clock::time_point::min() : Clock::now() + delay;
        m_sleepers.push_back({due, std::move(continuation)});
        mustWake = due < m_wakesAt;
    }
    if (mustWake)
        m_changed.notify_one();
}

void ThreadTaskExecutor::resumeOnMain(Continuation continuation)
{
    // Shared, because invokeMethod() needs a function that can be copied.
    QMetaObject::invokeMethod(
        &m_main, [held = std::make_shared<Continuation>(std::move(continuation))] { held->resume(); },
        Qt::QueuedConnection);
}

void ThreadTaskExecutor::wakeCancelled(const TaskState &task)
{
    {
        const std::scoped_lock lock(m_lock);
        const auto sleeper = std::ranges::find_if(
            m_sleepers, [&](const Sleeper &candidate) { return candidate.continuation.task().get() == &task; });
        if (sleeper == m_sleepers.end())
            return;
        sleeper->due = Clock::time_point::min();
    }
    m_changed.notify_one();
}

void ThreadTaskExecutor::blockThread(std::chrono::nanoseconds duration) { std::this_thread::sleep_for(duration); }

bool ThreadTaskExecutor::waitUntilIdle(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_lock);
    return m_idle.wait_for(lock, limit, [this] { return !m_isRunning && m_ready.empty(); });
}

void ThreadTaskExecutor::collectDueSleepers()
{
    const auto now = Clock::now();
    const auto due = std::ranges::stable_partition(m_sleepers, [now](const Sleeper &each) { return each.due > now; });
    std::ranges::stable_sort(due, {}, &Sleeper::due);
    for (auto &sleeper : due)
        m_ready.push_back(std::move(sleeper.continuation));
    m_sleepers.erase(due.begin(), due.end());
}

ThreadTaskExecutor::Clock::time_point ThreadTaskExecutor::nextDue() const
{
    auto due = Clock::time_point::max();
    for (const auto &sleeper : m_sleepers)
        due = std::min(due, sleeper.due);
    return due;
}

void ThreadTaskExecutor::run()
{
    std::unique_lock lock(m_lock);
    while (!m_shouldEnd) {
        collectDueSleepers();
        if (m_ready.empty()) {
            m_idle.notify_all();
            m_wakesAt = nextDue();
            if (m_wakesAt == Clock::time_point::max())
                m_changed.wait(lock);
            else
                m_changed.wait_until(lock, m_wakesAt);
            m_wakesAt = Clock::time_point::min();
            continue;
        }
        auto continuation = std::move(m_ready.front());
        m_ready.pop_front();
        m_isRunning = true;
        lock.unlock();
        continuation.resume();
        lock.lock();
        m_isRunning = false;
    }
}

} // namespace ambertide
