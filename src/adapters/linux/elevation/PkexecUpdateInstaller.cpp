#include "adapters/linux/elevation/PkexecUpdateInstaller.h"

#include "adapters/linux/elevation/Pkexec.h"

#include <fcntl.h>

#include <utility>

namespace ambertide {

namespace {

UpdateInstaller::Result resultOf(const ChildProcessEnd &end)
{
    using Outcome = UpdateInstaller::Outcome;
    if (end.isExit(0))
        return {Outcome::Installed, {}};
    if (end.isExit(pkexecDismissed))
        return {Outcome::Dismissed, {}};
    const bool isRefused = end.kind == ChildProcessEnd::Kind::NotStarted || end.isExit(pkexecNotAuthorised);
    return {isRefused ? Outcome::NotAuthorised : Outcome::Failed, describeFailure(end)};
}

} // namespace

void PkexecUpdateInstaller::install(const std::filesystem::path &package, std::string_view signature,
                                    std::function<void(Result)> done)
{
    m_done = std::move(done);
    const FileDescriptor file(::open(package.c_str(), O_RDONLY | O_CLOEXEC));
    auto start = asAdministrator({m_helper.string(), std::string(signature)});
    start.input = file.get();
    // The few lines that pkexec and the helper write fit into the pipe, so nobody need read before the end.
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
        m_watch.release()->deleteLater(); // it may have made this call
    }
    if (const auto done = std::exchange(m_done, {}))
        done(resultOf(m_pkexec->wait()));
}

} // namespace ambertide
