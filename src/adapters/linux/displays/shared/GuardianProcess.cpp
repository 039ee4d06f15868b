#include "adapters/linux/displays/shared/GuardianProcess.h"

#include "adapters/linux/process/ChildProcess.h"
#include "base/Console.h"

#include <poll.h>
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
    if (isRunning())
        m_isMissing = false;
    else if (!start())
        return;
    if (m_told != claim)
        tell(claim);
}

void GuardianProcess::dismiss()
{
    if (isRunning() && m_told != 0)
        tell(0);
    m_isMissing = false; // and not missed while nothing is tinted
}

void GuardianProcess::renew()
{
    const auto told = m_told;
    if (!isRunning() && told != 0)
        guard(told);
}

/// A guardian that has been stopped (SIGSTOP) could not do its work when needed, so it is killed to make room for
/// another.
bool GuardianProcess::isRunning()
{
    if (m_process == 0)
        return false;
    siginfo_t change{};
    waitid(P_PID, static_cast<id_t>(m_process), &change, WEXITED | WSTOPPED | WNOHANG | WNOWAIT);
    if (change.si_pid == 0)
        return true;
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    forget();
    if (change.si_code == CLD_STOPPED || (change.si_code == CLD_KILLED && change.si_status == SIGKILL))
        return false;
    m_earliestStart = Clock::now() + betweenStarts;
    // Once or twice, this may just be an X server that comes and goes.
    m_failures = change.si_code == CLD_EXITED && change.si_status != 0 ? m_failures + 1 : 0;
    if (m_failures >= 3)
        sayUnguarded("it cannot use the display server");
    return false;
}

bool GuardianProcess::start()
{
    const auto now = Clock::now();
    if (now < m_earliestStart)
        return false;

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
    if (failure != 0) {
        m_earliestStart = now + betweenStarts;
        sayUnguarded(std::strerror(failure));
    }
    return failure == 0;
}

void GuardianProcess::sayUnguarded(const char *reason)
{
    m_isMissing = true;
    if (!std::exchange(m_failureSaid, true)) {
        console::print("Cannot start " + m_program.string() + " (" + reason +
                       "): the displays will stay tinted if Ambertide is killed.");
    }
}

int GuardianProcess::spawn(int channel)
{
    ChildStart start{.arguments = {m_program.string()}, .input = channel, .isDetached = true};
    start.arguments.insert(start.arguments.end(), m_arguments.begin(), m_arguments.end());
    pid_t process = 0;
    const int failure = startChild(start, process);
    if (failure == 0)
        m_process = m_started = process;
    return failure;
}

void GuardianProcess::tell(GuardianMessage message)
{
    if (send(m_channel, &message, sizeof message, MSG_NOSIGNAL | MSG_DONTWAIT) == sizeof message) {
        m_told = message;
        return;
    }
    // The guardian has just died, or is stuck and would not do its work either.
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
