#pragma once

#include "adapters/linux/elevation/Pkexec.h"
#include "ports/UpdateInstaller.h"

#include <QSocketNotifier>

#include <memory>
#include <optional>

namespace ambertide {

/// Hands the package to a helper that polkit's pkexec runs as root: as bytes, so that no file of the user's is read
/// there. Main thread. Destroying it leaves an installation that has begun to itself.
class PkexecUpdateInstaller final : public UpdateInstaller
{
public:
    explicit PkexecUpdateInstaller(std::filesystem::path helper, std::string pkexec = systemPkexec)
        : m_helper(std::move(helper)), m_pkexecPath(std::move(pkexec))
    {
    }

    void install(const UpdatePackage &package, std::function<void(Result)> done) override;

private:
    void finish();

    const std::filesystem::path m_helper;
    const std::string m_pkexecPath;
    std::function<void(Result)> m_done;
    std::optional<ChildProcess> m_pkexec;
    std::unique_ptr<QSocketNotifier> m_watch; ///< tells that it has ended
    QObject m_context;                        ///< of the calls that come from the event loop
};

} // namespace ambertide
