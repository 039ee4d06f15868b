#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"

#include "adapters/linux/elevation/Pkexec.h"

#include <QString>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace ambertide {

namespace {

using Status = PrivilegedResult::Status;

/// What Linux takes as one argument of a program, its final NUL counted.
constexpr std::size_t maximumArgument = std::size_t{128} * 1024;

/// The bus that carries the prompt takes valid text alone.
bool isAcceptable(const std::string &command)
{
    return command.size() < maximumArgument && command.find('\0') == std::string::npos &&
           QString::fromStdString(command).toStdString() == command;
}

bool isReadable(int descriptor)
{
    pollfd event = {descriptor, POLLIN, 0};
    return ::poll(&event, 1, 0) > 0;
}

} // namespace

PkexecPrivilegedRunner::PkexecPrivilegedRunner(std::string shell)
    : m_shell(std::move(shell)), m_cancellation(::eventfd(0, EFD_CLOEXEC))
{
}

std::string PkexecPrivilegedRunner::installedShell()
{
    constexpr const char *own = AMBERTIDE_ADMINISTRATOR_SHELL;
    return ::access(own, X_OK) == 0 ? own : "/bin/sh";
}

PrivilegedResult PkexecPrivilegedRunner::run(const std::string &command)
{
    if (!isAcceptable(command))
        return {Status::Rejected, {}};
    ChildProcessEnd end{ChildProcessEnd::Kind::Cancelled, 0, {}};
    if (!isReadable(m_cancellation.get())) {
        ChildProcess pkexec(asAdministrator({m_shell, "-c", command}), ChildProcess::Kept::ErrorOutput);
        end = pkexec.wait(m_cancellation.get());
    }
    if (end.isExit(0))
        return {};
    return {Status::Failed, describeFailure(end)};
}

void PkexecPrivilegedRunner::cancel()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_cancellation.get(), &one, sizeof one);
}

} // namespace ambertide
