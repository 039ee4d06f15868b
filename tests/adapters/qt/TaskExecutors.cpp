#include "adapters/qt/ThreadTaskExecutor.h"
#include "base/Task.h"

#include <QTest>

#include <atomic>
#include <future>
#include <memory>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

Async sleepLong(TaskContext context) { co_await context.sleep(1h); }

} // namespace

class TaskExecutorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCancelledSleepThrowsThroughNestedBodies()
    {
        ThreadTaskExecutor executor;
        std::promise<void> wasCut;
        const auto task = Task::start(executor, [&](TaskContext context) -> Async {
            try {
                co_await sleepLong(context);
            } catch (const CancellationError &) {
                wasCut.set_value();
                throw;
            }
        });
        task.cancel(); // before or after the sleep has begun: both must end it
        task.cancel();
        QVERIFY(wasCut.get_future().wait_for(10s) == std::future_status::ready);
    }

    void anEarlierSleeperIsWokenBeforeALaterOne()
    {
        ThreadTaskExecutor executor;
        Task::start(executor, sleepLong);
        QVERIFY(executor.waitUntilIdle(10s));
        std::atomic<bool> isAwake = false;
        Task::startOnMain(executor, [&](TaskContext context) -> Async {
            co_await context.sleep(1ms); // begun while the background thread is asleep
            isAwake = true;
        });
        QTRY_VERIFY(isAwake);
    }

    void whatATaskHoldsIsReleasedWithItsExecutor()
    {
        for (const bool isBoundForMain : {true, false}) { // otherwise it is asleep within a nested body
            const auto held = std::make_shared<int>();
            {
                ThreadTaskExecutor executor;
                Task::start(executor, [held, isBoundForMain](TaskContext context) -> Async {
                    if (isBoundForMain)
                        co_await context.onMain();
                    co_await sleepLong(context);
                });
                QVERIFY(executor.waitUntilIdle(10s));
                QVERIFY(held.use_count() > 1);
            }
            QCOMPARE(held.use_count(), 1L);
        }
    }
};

QTEST_GUILESS_MAIN(TaskExecutorsTest)
#include "TaskExecutors.moc"
