#include "app/EndingSignals.h"

#include <pthread.h>

#include <csignal>
#include <mutex>
#include <thread>
#include <utility>

namespace ambertide {

namespace {

/// Not destroyed at exit: a signal may still come while the process ends.
struct LastWork
{
    std::mutex lock;
    std::function<void()> work;
};
LastWork &lastWork()
{
    static auto *work = new LastWork;
    return *work;
}

void doLastWork()
{
    const std::scoped_lock lock(lastWork().lock);
    if (lastWork().work)
        lastWork().work();
}

} // namespace

void confineEndingSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    std::thread([ending] {
        for (int signal = 0;;) {
            sigwait(&ending, &signal);
            doLastWork();
            pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
            std::raise(signal);
            pthread_sigmask(SIG_BLOCK, &ending, nullptr);
        }
    }).detach();
}

void setLastWork(std::function<void()> work)
{
    const std::scoped_lock lock(lastWork().lock);
    lastWork().work = std::move(work);
}

} // namespace ambertide
