#include "adapters/linux/elevation/PkexecUpdateInstaller.h"

#include "adapters/linux/elevation/helper/InstallationStatus.h"
#include "adapters/linux/elevation/makeUpdateInstaller.h"

#include <fcntl.h>

#include <utility>

namespace ambertide {

namespace {

UpdateInstaller::Outcome outcomeOf(const ChildProcessEnd &end)
{
    using Outcome = UpdateInstaller::Outcome;
    if (end.kind == ChildProcessEnd::Kind::NotStarted || end.isExit(pkexecNotAuthorised))
        return Outcome::NotAuthorised;
    if (end.isExit(pkexecDismissed))
        return Outcome::Dismissed;
    return end.kind == ChildProcessEnd::Kind::Exited ? installationOutcome(end.code) : Outcome::Failed;
}

} // namespace

std::unique_ptr<UpdateInstaller> makeUpdateInstaller(const std::filesystem::path &programs)
{
    return std::make_unique<PkexecUpdateInstaller>(programs / "AmbertideInstallHelper");
}

void PkexecUpdateInstaller::install(const UpdatePackage &package, std::function<void(Result)> done)
{
    m_done = std::move(done);
    const FileDescriptor file(::open(package.path.c_str(), O_RDONLY | O_CLOEXEC));
    auto start = asAdministrator(m_pkexecPath, {m_helper.string(), package.signature, package.version});
    start.input = file.get();
    // The few lines that pkexec and the helper write fit into the pipe, so nothing has to be read before the end.
    m_pkexec.emplace(std::move(start), ChildProcess::Kept::ErrorOutput);
    if (m_pkexec->endDescriptor() < 0) {
        QMetaObject::invokeMethod(
            &m_context, [this] { finish(); }, Qt::QueuedConnection);
        return;
    }
    m_watch = std::make_unique<QSocketNotifier>(m_pkexec->endDescriptor(), QSocketNotifier::Read);
    QObject::connect(m_watch.get(), &QSocketNotifier::activated, &m_context, [this] { finish(); });
}

void PkexecUpdateInstaller::finish()
{
    if (m_watch) {
        m_watch->setEnabled(false);
        m_watch.release()->deleteLater(); // this call may come from its signal
    }
    const auto done = std::exchange(m_done, {});
    const auto end = m_pkexec->wait();
    if (done)
        done({outcomeOf(end), oneLine(end.output)});
}

} // namespace ambertide
