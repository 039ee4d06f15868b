#include "adapters/linux/process/ChildProcess.h"

#include "adapters/linux/process/FileDescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace ambertide {

namespace {

using Kind = ChildProcessEnd::Kind;

constexpr std::size_t keptErrorOutput = 4096;
constexpr std::size_t maximumErrorOutput = 1024 * 1024;

/// What the child is started with, beside its arguments.
class SpawnSettings
{
public:
    explicit SpawnSettings(int errorOutput)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&m_actions, errorOutput, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }

    const posix_spawn_file_actions_t *actions() const { return &m_actions; }
    const posix_spawnattr_t *attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions = {};
    posix_spawnattr_t m_attributes = {};
};

std::vector<char *> pointersTo(const std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (const auto &text : texts)
        pointers.push_back(const_cast<char *>(text.c_str())); // the call's type is older than const
    pointers.push_back(nullptr);
    return pointers;
}

/// The tail of what a child writes to standard error, through a pipe that never makes this end wait.
class ErrorOutput
{
public:
    explicit ErrorOutput(FileDescriptor pipe) : m_pipe(std::move(pipe)) {}

    int descriptor() const { return m_pipe.get(); }
    const std::string &tail() const { return m_tail; }

    /// Takes what there is, and closes the pipe at its end or when it was too much.
    void read()
    {
        std::array<char, keptErrorOutput> buffer;
        while (m_pipe.isOpen()) {
            const auto count = ::read(m_pipe.get(), buffer.data(), buffer.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0 && errno == EAGAIN)
                return;
            if (count > 0) {
                m_total += static_cast<std::size_t>(count);
                m_tail.append(buffer.data(), static_cast<std::size_t>(count));
                m_tail.erase(0, m_tail.size() - std::min(m_tail.size(), keptErrorOutput));
            }
            if (count <= 0 || m_total > maximumErrorOutput)
                m_pipe.close();
        }
    }

private:
    FileDescriptor m_pipe;
    std::string m_tail;
    std::size_t m_total = 0;
};

/// glibc 2.36 declares its own for C alone.
FileDescriptor openProcess(pid_t process)
{
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

bool isReadable(int descriptor)
{
    pollfd event = {descriptor, POLLIN, 0};
    return ::poll(&event, 1, 0) > 0;
}

/// Ends when the child has ended, whoever else still holds the pipe. False when it was cancelled.
bool waitForEnd(int process, int cancellation, ErrorOutput &errorOutput)
{
    for (;;) {
        std::array<pollfd, 3> events = {
            {{cancellation, POLLIN, 0}, {process, POLLIN, 0}, {errorOutput.descriptor(), POLLIN, 0}}};
        if (::poll(events.data(), events.size(), -1) < 0)
            continue;
        if (events[0].revents != 0)
            return false;
        errorOutput.read();
        if (events[1].revents != 0)
            return true;
    }
}

} // namespace

ChildProcessEnd runChildProcess(const std::vector<std::string> &arguments, const std::vector<std::string> &environment,
                                int cancellation)
{
    std::array<int, 2> ends = {-1, -1};
    if (isReadable(cancellation))
        return {Kind::Cancelled, 0, {}};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {Kind::NotStarted, errno, {}};
    FileDescriptor writeEnd(ends[1]);
    ErrorOutput errorOutput{FileDescriptor(ends[0])};
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);

    pid_t child = 0;
    const SpawnSettings settings(writeEnd.get());
    const int error = posix_spawnp(&child, arguments.front().c_str(), settings.actions(), settings.attributes(),
                                   pointersTo(arguments).data(), pointersTo(environment).data());
    if (error != 0)
        return {Kind::NotStarted, error, {}};
    writeEnd.close();

    const FileDescriptor process = openProcess(child);
    if (!process.isOpen() || !waitForEnd(process.get(), cancellation, errorOutput)) {
        ::kill(child, SIGTERM); // without effect on a child that has become another user's
        ::waitpid(child, nullptr, WNOHANG);
        return {Kind::Cancelled, 0, errorOutput.tail()};
    }
    siginfo_t end = {};
    ::waitid(P_PID, static_cast<id_t>(child), &end, WEXITED);
    return {end.si_code == CLD_EXITED ? Kind::Exited : Kind::Signalled, end.si_status, errorOutput.tail()};
}

} // namespace ambertide
