#include "adapters/linux/displays/shared/GuardianProcess.h"

#include "base/Console.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace ambertide {

namespace {

constexpr std::chrono::seconds betweenStarts{1};
constexpr int millisecondsToEnd = 500;

/// How the guardian begins: deaf to signals and away from the terminal and from all files but its channel.
struct SpawnSettings
{
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t files;

    explicit SpawnSettings(int channel)
    {
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigmask(&attributes, &all);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, channel, STDIN_FILENO);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;
};

} // namespace

GuardianProcess::GuardianProcess(std::filesystem::path program, std::vector<std::string> arguments)
    : m_program(std::move(program)), m_arguments(std::move(arguments))
{
}

GuardianProcess::~GuardianProcess()
{
    if (!isRunning())
        return;
    shutdown(m_channel, SHUT_WR);
    pollfd hangUp{m_channel, 0, 0};
    const bool ended = poll(&hangUp, 1, millisecondsToEnd) > 0;
    waitpid(m_process, nullptr, ended ? 0 : WNOHANG);
    close(m_channel);
}

void GuardianProcess::guard(GuardianMessage claim)
{
    if ((isRunning() || start()) && m_told != claim)
        tell(claim);
}

void GuardianProcess::dismiss()
{
    if (isRunning() && m_told != 0)
        tell(0);
}

bool GuardianProcess::isRunning()
{
    if (m_process == 0)
        return false;
    int status = 0;
    if (waitpid(m_process, &status, WNOHANG) == 0)
        return true;
    forget();
    // Once or twice may be the X server's own coming and going.
    m_failures = WIFEXITED(status) && WEXITSTATUS(status) != 0 ? m_failures + 1 : 0;
    if (m_failures == 3)
        sayUnguarded("it cannot use the display server");
    return false;
}

bool GuardianProcess::start()
{
    const auto now = Clock::now();
    if (now < m_earliestStart)
        return false;
    m_earliestStart = now + betweenStarts;

    std::array<int, 2> ends{};
    int failure = socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0 ? 0 : errno;
    if (failure == 0) {
        failure = spawn(ends[1]);
        close(ends[1]);
        if (failure == 0)
            m_channel = ends[0];
        else
            close(ends[0]);
    }
    if (failure != 0)
        sayUnguarded(std::strerror(failure));
    return failure == 0;
}

void GuardianProcess::sayUnguarded(const char *reason)
{
    if (!std::exchange(m_failureSaid, true)) {
        console::print("Cannot start " + m_program.string() + " (" + reason +
                       "): the displays will stay tinted if Ambertide is killed.");
    }
}

int GuardianProcess::spawn(int channel)
{
    const SpawnSettings settings(channel);
    std::string program = m_program.string();
    auto texts = m_arguments;
    std::vector<char *> arguments{program.data()};
    for (auto &text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);
    pid_t process = 0;
    const int failure =
        posix_spawn(&process, program.c_str(), &settings.files, &settings.attributes, arguments.data(), environ);
    if (failure == 0)
        m_process = process;
    return failure;
}

void GuardianProcess::tell(GuardianMessage message)
{
    if (send(m_channel, &message, sizeof message, MSG_NOSIGNAL | MSG_DONTWAIT) == sizeof message) {
        m_told = message;
        return;
    }
    // It has just died, or is stuck and will not do its work either.
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    forget();
}

void GuardianProcess::forget()
{
    close(m_channel);
    m_channel = -1;
    m_process = 0;
    m_told = 0;
}

} // namespace ambertide
