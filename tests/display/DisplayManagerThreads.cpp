#include "adapters/qt/ThreadTaskExecutor.h"
#include "display/DisplayManager.h"
#include "support/Fakes.h"

#include <QTest>

#include <thread>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// The real executor with a second shrunk to a millisecond.
struct HastyExecutor final : TaskExecutor
{
    ThreadTaskExecutor threads;

    void resume(Continuation continuation) override { threads.resume(std::move(continuation)); }
    void resumeAfter(std::chrono::nanoseconds delay, Continuation continuation) override
    {
        threads.resumeAfter(delay / 1000, std::move(continuation));
    }
    void resumeOnMain(Continuation continuation) override { threads.resumeOnMain(std::move(continuation)); }
    void wakeCancelled(const TaskState &task) override { threads.wakeCancelled(task); }
    void blockThread(std::chrono::nanoseconds duration) override { threads.blockThread(duration / 1000); }
};

} // namespace

class DisplayManagerThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Requests, resets and wakes from several threads at once; the thread sanitizer watches, and the last word counts.
    void concurrentRequestsEndInTheLastOne()
    {
        FakeDisplayServices displays;
        FakeSystemWake wake;
        std::shared_ptr<DisplayManager> manager;
        {
            HastyExecutor executor;
            manager = DisplayManager::create(displays, executor, wake);
            std::vector<std::jthread> callers;
            for (int caller = 0; caller < 4; ++caller) {
                callers.emplace_back([&manager, caller] {
                    for (int i = 0; i < 200; ++i) {
                        manager->setTemperature(2000 + 260 * ((i * 7 + caller) % 18));
                        if (i % 5 == caller)
                            manager->reset();
                        manager->reapplyCurrentTemperature();
                    }
                });
            }
            callers.clear();
            manager->setTemperature(2130); // 100 K away from whatever was committed: never dropped
            QTRY_COMPARE(manager->temperature(), 2130.0);
            QVERIFY(executor.threads.waitUntilIdle(10s));
        }
        const auto writes = displays.takeWrites();
        QCOMPARE(writes.back().tables.green, DisplayManager::createGammaTables(2130).green);
        wake.wakeUp(); // the executor is gone, the manager is not: still harmless
    }
};

QTEST_GUILESS_MAIN(DisplayManagerThreadsTest)
#include "DisplayManagerThreads.moc"
