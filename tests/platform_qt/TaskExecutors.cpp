#include "platform/Task.h"
#include "platform/qt/QtMainActor.h"
#include "platform/qt/ThreadTaskExecutor.h"
#include "support/FakeTaskExecutor.h"

#include <QTest>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// Queues what it is given for the test's own thread.
class QueueingMainActor final : public MainActor
{
public:
    void resume(Continuation continuation) override
    {
        const std::scoped_lock lock(m_lock);
        m_waiting.push_back(std::move(continuation));
        m_arrived.notify_one();
    }
    void runNext()
    {
        std::unique_lock lock(m_lock);
        m_arrived.wait(lock, [this] { return !m_waiting.empty(); });
        auto next = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        next.resume();
    }

private:
    std::mutex m_lock;
    std::condition_variable m_arrived;
    std::deque<Continuation> m_waiting;
};

Async sleepLong(TaskContext context, std::promise<bool> &wasCut)
{
    try {
        co_await context.sleep(1h);
        wasCut.set_value(false);
    } catch (const CancellationError &) {
        wasCut.set_value(true);
        throw;
    }
}

} // namespace

class TaskExecutorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCancelledSleepThrowsThroughNestedBodies()
    {
        QueueingMainActor mainActor;
        ThreadTaskExecutor executor(mainActor);
        std::promise<bool> wasCut;
        std::promise<void> isAsleep;
        const auto task = Task::start(executor, [&](TaskContext context) -> Async {
            isAsleep.set_value();
            co_await sleepLong(context, wasCut);
        });
        isAsleep.get_future().wait();
        task.cancel(); // before or after the sleep has begun: both must end it
        task.cancel();
        QVERIFY(wasCut.get_future().get());
    }

    void sleepersWakeInTheOrderOfTheirDeadlines()
    {
        QueueingMainActor mainActor;
        ThreadTaskExecutor executor(mainActor);
        std::vector<int> order;
        std::promise<void> allAwake;
        for (const int delay : {30, 10, 20}) {
            Task::start(executor, [&, delay](TaskContext context) -> Async {
                co_await context.sleep(std::chrono::milliseconds(delay));
                order.push_back(delay);
                if (order.size() == 3)
                    allAwake.set_value();
            });
        }
        allAwake.get_future().wait();
        QCOMPARE(order, (std::vector<int>{10, 20, 30}));
    }

    void aTaskHopsToTheMainThreadAndBack()
    {
        QueueingMainActor mainActor;
        ThreadTaskExecutor executor(mainActor);
        std::vector<std::thread::id> visited;
        std::promise<void> finished;
        Task::start(executor, [&](TaskContext context) -> Async {
            visited.push_back(std::this_thread::get_id());
            co_await context.onMain();
            visited.push_back(std::this_thread::get_id());
            co_await context.sleep(0ms);
            visited.push_back(std::this_thread::get_id());
            finished.set_value();
        });
        mainActor.runNext();
        finished.get_future().wait();
        QCOMPARE(visited[1], std::this_thread::get_id());
        QVERIFY(visited[0] != visited[1]);
        QCOMPARE(visited[2], visited[0]);
    }

    void whatATaskHoldsIsReleasedWithItsExecutor_data()
    {
        QTest::addColumn<int>("stage");
        QTest::newRow("asleep") << 0;
        QTest::newRow("waiting for the main thread") << 1;
        QTest::newRow("asleep within a nested body") << 2;
    }
    void whatATaskHoldsIsReleasedWithItsExecutor()
    {
        QFETCH(int, stage);
        const auto held = std::make_shared<int>(stage);
        std::promise<bool> unused;
        {
            QtMainActor mainActor;
            ThreadTaskExecutor executor(mainActor);
            Task::start(executor, [held, stage, &unused](TaskContext context) -> Async {
                if (stage == 0)
                    co_await context.sleep(1h);
                if (stage == 1)
                    co_await context.onMain();
                co_await sleepLong(context, unused);
            });
            QVERIFY(executor.waitUntilIdle(10s));
            QVERIFY(held.use_count() > 1);
        }
        QCOMPARE(held.use_count(), 1L);
    }
};

QTEST_GUILESS_MAIN(TaskExecutorsTest)
#include "TaskExecutors.moc"
