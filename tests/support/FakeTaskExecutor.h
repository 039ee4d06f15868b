#pragma once

#include "base/TaskExecutor.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <vector>

namespace ambertide {

/// Background and main thread in one, on the test's own thread and in a time of its own: nothing runs and no time
/// passes but by the calls below.
class FakeTaskExecutor final : public TaskExecutor
{
public:
    ~FakeTaskExecutor() override;

    void resume(Continuation continuation) override { m_ready.push_back(std::move(continuation)); }
    void resumeAfter(std::chrono::nanoseconds delay, Continuation continuation) override;
    void resumeOnMain(Continuation continuation) override { m_ready.push_back(std::move(continuation)); }
    void wakeCancelled(const TaskState &task) override;
    /// Lets the time pass without running anything.
    void blockThread(std::chrono::nanoseconds duration) override { m_now += duration; }

    std::chrono::nanoseconds now() const { return m_now; }
    std::size_t sleeperCount() const { return m_sleepers.size(); }

    /// Runs what is ready until nothing is.
    void runReady();
    /// Runs what is ready and whatever falls due until `duration` has passed.
    void advance(std::chrono::nanoseconds duration);

private:
    struct Sleeper
    {
        std::chrono::nanoseconds due;
        Continuation continuation;
    };

    std::chrono::nanoseconds m_now{0};
    std::deque<Continuation> m_ready;
    std::vector<Sleeper> m_sleepers;
};

} // namespace ambertide
