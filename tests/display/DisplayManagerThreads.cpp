#include "adapters/qt/ThreadTaskExecutor.h"
#include "display/DisplayManager.h"
#include "support/FakeDisplayServices.h"
#include "support/FakeSystemWake.h"

#include <QTest>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// The real executor with a second shrunk to a millisecond.
class HastyExecutor final : public TaskExecutor
{
public:
    explicit HastyExecutor(TaskExecutor &executor) : m_executor(executor) {}
    void resume(Continuation continuation) override { m_executor.resume(std::move(continuation)); }
    void resumeAfter(std::chrono::nanoseconds delay, Continuation continuation) override
    {
        m_executor.resumeAfter(delay / 1000, std::move(continuation));
    }
    void resumeOnMain(Continuation continuation) override { m_executor.resumeOnMain(std::move(continuation)); }
    void wakeCancelled(const TaskState &task) override { m_executor.wakeCancelled(task); }
    void blockThread(std::chrono::nanoseconds duration) override { m_executor.blockThread(duration / 1000); }

private:
    TaskExecutor &m_executor;
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
            ThreadTaskExecutor threads;
            HastyExecutor executor(threads);
            manager = DisplayManager::create(displays, executor, wake);

            std::vector<std::thread> callers;
            for (int caller = 0; caller < 4; ++caller) {
                callers.emplace_back([&, caller] {
                    for (int i = 0; i < 200; ++i) {
                        manager->setTemperature(2000 + 260 * ((i * 7 + caller) % 18));
                        if (i % 5 == caller)
                            manager->reset();
                        manager->reapplyCurrentTemperature();
                    }
                });
            }
            for (auto &caller : callers)
                caller.join();

            manager->setTemperature(2130); // 100 K away from whatever was committed: never dropped
            QTRY_COMPARE(manager->temperature(), 2130.0);
            QVERIFY(threads.waitUntilIdle(10s));
        }
        const auto writes = displays.takeWrites();
        QVERIFY(!writes.back().isRestore);
        QCOMPARE(writes.back().tables.green[255], DisplayManager::createGammaTables(2130).green[255]);
        wake.wakeUp(); // the executor is gone, the manager is not: still harmless
    }
};

QTEST_GUILESS_MAIN(DisplayManagerThreadsTest)
#include "DisplayManagerThreads.moc"
