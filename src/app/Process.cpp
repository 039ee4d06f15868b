#include "app/Process.h"

#include "base/Console.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace ambertide::process {

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

sigset_t endingSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    return ending;
}

void handleEndingSignals(void (*handler)(int))
{
    std::signal(SIGTERM, handler);
    std::signal(SIGINT, handler);
}

/// If one of them was closed at the start, its number would go to some socket, and lines would be printed into that.
void openStandardDescriptors()
{
    int opened = 0;
    do
        opened = open("/dev/null", O_RDWR);
    while (opened >= 0 && opened <= STDERR_FILENO);
    if (opened > STDERR_FILENO)
        close(opened);
}

/// For exceptions that nobody catches: memory and threads may run out at any moment. The guardian gives the displays
/// back.
[[noreturn]] void giveUp()
{
    constexpr std::string_view line = "Ambertide ends: the system refuses it memory, threads or another resource.\n";
    [[maybe_unused]] const auto length = write(STDERR_FILENO, line.data(), line.size());
    std::_Exit(EXIT_FAILURE);
}

void confineEndingSignals()
{
    const auto ending = endingSignals();
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

} // namespace

void prepare()
{
    openStandardDescriptors();
    std::set_terminate(giveUp);
    confineEndingSignals();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL); // the parent may have ignored it, and then no child's exit status can be had
}

void setLastWork(std::function<void()> work)
{
    // Registered only now, so that it runs before the libraries that are in use by now clean up.
    [[maybe_unused]] static const int registration = std::atexit(doLastWork);
    const std::scoped_lock lock(lastWork().lock);
    lastWork().work = std::move(work);
}

void ignoreEndingSignals()
{
    handleEndingSignals(SIG_IGN);
    setLastWork({});
}

void startAnew(const std::filesystem::path &program, char *argv[])
{
    handleEndingSignals(SIG_DFL);
    const auto ending = endingSignals();
    pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
    execv(program.c_str(), argv);
    console::print("The new version cannot be started: " + std::string(std::strerror(errno)));
}

} // namespace ambertide::process
