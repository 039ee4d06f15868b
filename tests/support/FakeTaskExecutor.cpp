#include "support/FakeTaskExecutor.h"

#include <algorithm>
#include <utility>

namespace ambertide {

FakeTaskExecutor::~FakeTaskExecutor()
{
    while (!m_ready.empty() || !m_sleepers.empty()) {
        const auto ready = std::exchange(m_ready, {});
        const auto sleepers = std::exchange(m_sleepers, {});
    }
}

void FakeTaskExecutor::resumeAfter(std::chrono::nanoseconds delay, Continuation continuation)
{
    m_sleepers.push_back({m_now + delay, std::move(continuation)});
}

void FakeTaskExecutor::wakeCancelled(const TaskState &task)
{
    for (auto &sleeper : m_sleepers) {
        if (sleeper.continuation.task().get() == &task)
            sleeper.due = m_now;
    }
}

void FakeTaskExecutor::runReady()
{
    for (;;) {
        const auto due =
            std::ranges::stable_partition(m_sleepers, [this](const auto &each) { return each.due > m_now; });
        std::ranges::stable_sort(due, {}, &Sleeper::due);
        for (auto &sleeper : due)
            m_ready.push_back(std::move(sleeper.continuation));
        m_sleepers.erase(due.begin(), due.end());
        if (m_ready.empty())
            return;
        auto next = std::move(m_ready.front());
        m_ready.pop_front();
        next.resume();
    }
}

void FakeTaskExecutor::advance(std::chrono::nanoseconds duration)
{
    const auto end = m_now + duration;
    for (;;) {
        runReady();
        const auto next = std::ranges::min_element(m_sleepers, {}, &Sleeper::due);
        if (next == m_sleepers.end() || next->due > end)
            break;
        m_now = std::max(m_now, next->due);
    }
    m_now = std::max(m_now, end);
}

} // namespace ambertide
