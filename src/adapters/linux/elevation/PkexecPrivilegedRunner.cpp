#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"

#include "adapters/linux/elevation/toollink/ToolLink.h"

#include <QCoreApplication>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace ambertide {

namespace {

using Status = PrivilegedResult::Status;

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(ambertide::PrivilegedRunner)

public:
    static QString describe(const ChildProcessEnd &end)
    {
        if (end.isExit(toolLink::FolderInWay))
            return tr("/usr/local/bin/ambertide is a folder");
        if (end.isExit(toolLink::NoTool))
            return tr("the tool is not in its place beside Ambertide");
        if (end.isExit(toolLink::Failed))
            return tr("/usr/local/bin could not be changed");
        return describeFailure(end);
    }
};

bool isReadable(int descriptor)
{
    pollfd event = {descriptor, POLLIN, 0};
    return ::poll(&event, 1, 0) > 0;
}

} // namespace

PkexecPrivilegedRunner::PkexecPrivilegedRunner(std::filesystem::path programs, std::string pkexec)
    : m_programs(std::move(programs)), m_pkexec(std::move(pkexec)), m_cancellation(::eventfd(0, EFD_CLOEXEC))
{
}

PrivilegedResult PkexecPrivilegedRunner::run(const std::string &command)
{
    const auto tool = (m_programs / "AmbertideCLI").string();
    std::string argument;
    if (command == "mkdir -p /usr/local/bin && ln -sf '" + tool + "' '/usr/local/bin/ambertide'")
        argument = "install";
    else if (command == "rm -f '/usr/local/bin/ambertide'")
        argument = "uninstall";
    else
        return {Status::Rejected, {}};

    ChildProcessEnd end{ChildProcessEnd::Kind::Cancelled, 0, {}};
    if (!isReadable(m_cancellation.get())) {
        ChildProcess pkexec(asAdministrator(m_pkexec, {(m_programs / "AmbertideToolLink").string(), argument}),
                            ChildProcess::Kept::ErrorOutput);
        end = pkexec.wait(m_cancellation.get());
    }
    if (end.isExit(toolLink::Done))
        return {};
    return {Status::Failed, Texts::describe(end)};
}

void PkexecPrivilegedRunner::cancel()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_cancellation.get(), &one, sizeof one);
}

} // namespace ambertide
