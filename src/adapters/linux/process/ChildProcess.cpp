#include "adapters/linux/process/ChildProcess.h"

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

constexpr std::size_t pipeBytes = 64 * 1024;

/// What posix_spawn() needs besides the arguments.
struct SpawnSettings
{
    explicit SpawnSettings(const ChildStart &start)
    {
        posix_spawn_file_actions_init(&files);
        useAs(STDIN_FILENO, start.input);
        useAs(STDOUT_FILENO, start.output);
        useAs(STDERR_FILENO, start.errorOutput);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);

        sigset_t signals;
        posix_spawnattr_init(&attributes);
        sigemptyset(&signals);
        if (start.isDetached)
            sigfillset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigemptyset(&signals);
        sigaddset(&signals, SIGPIPE);
        sigaddset(&signals, SIGCHLD);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        const int session = start.isDetached ? POSIX_SPAWN_SETSID : 0;
        posix_spawnattr_setflags(&attributes,
                                 static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | session));
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }

    void useAs(int standard, int descriptor)
    {
        if (descriptor >= 0)
            posix_spawn_file_actions_adddup2(&files, descriptor, standard);
        else
            posix_spawn_file_actions_addopen(&files, standard, "/dev/null", O_RDWR, 0);
    }

    posix_spawn_file_actions_t files = {};
    posix_spawnattr_t attributes = {};
};

std::vector<char *> pointersTo(const std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (const auto &text : texts)
        pointers.push_back(const_cast<char *>(text.c_str())); // posix_spawn() predates const and changes nothing
    pointers.push_back(nullptr);
    return pointers;
}

/// A process can be started with SIGCHLD ignored, and the system then tells nobody how a child ended.
void keepExitStatusOfChildren()
{
    struct sigaction present = {};
    if (::sigaction(SIGCHLD, nullptr, &present) == 0 && present.sa_handler == SIG_IGN)
        std::signal(SIGCHLD, SIG_DFL);
}

/// A system call, because glibc 2.36 declares pidfd_open() for C only.
FileDescriptor openProcess(pid_t process)
{
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

} // namespace

int startChild(const ChildStart &start, pid_t &process)
{
    keepExitStatusOfChildren();
    const SpawnSettings settings(start);
    const auto arguments = pointersTo(start.arguments);
    const auto variables = start.environment ? pointersTo(*start.environment) : std::vector<char *>();
    return posix_spawnp(&process, arguments.front(), &settings.files, &settings.attributes, arguments.data(),
                        start.environment ? variables.data() : environ);
}

ChildProcess::ChildProcess(ChildStart start, Kept kept)
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        m_error = errno;
        return;
    }
    m_pipe = FileDescriptor(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    ::fcntl(m_pipe.get(), F_SETFL, O_NONBLOCK);
    start.errorOutput = writeEnd.get();
    if (kept == Kept::AllOutput)
        start.output = writeEnd.get();
    m_error = startChild(start, m_process);
    if (m_error != 0)
        return;
    m_end = openProcess(m_process);
    if (!m_end.isOpen()) {
        m_error = errno;
        ::kill(m_process, SIGTERM);
    }
}

ChildProcessEnd ChildProcess::wait(int cancellation)
{
    if (m_error != 0)
        return {Kind::NotStarted, m_error, {}};
    for (;;) {
        std::array<pollfd, 3> events = {
            {{cancellation, POLLIN, 0}, {m_end.get(), POLLIN, 0}, {m_pipe.get(), POLLIN, 0}}};
        if (::poll(events.data(), events.size(), -1) < 0)
            continue;
        if (events[0].revents != 0) {
            ::kill(m_process, SIGTERM); // without effect once the child runs as another user
            ::waitpid(m_process, nullptr, WNOHANG);
            return {Kind::Cancelled, 0, m_output};
        }
        readOutput();
        if (events[1].revents != 0)
            break;
    }
    siginfo_t end = {};
    ::waitid(P_PID, static_cast<id_t>(m_process), &end, WEXITED);
    return {end.si_code == CLD_EXITED ? Kind::Exited : Kind::Signalled, end.si_status, m_output};
}

/// Reads once, as much as a pipe can hold, so that it neither waits nor is kept busy by a program that goes on writing.
void ChildProcess::readOutput()
{
    std::array<char, pipeBytes> bytes;
    const auto count = m_pipe.isOpen() ? ::read(m_pipe.get(), bytes.data(), bytes.size()) : 0;
    if (count > 0) {
        m_output.append(bytes.data(), static_cast<std::size_t>(count));
        m_output.erase(0, m_output.size() - std::min(m_output.size(), mostKept));
    } else if (count == 0) {
        m_pipe.close();
    }
}

} // namespace ambertide
