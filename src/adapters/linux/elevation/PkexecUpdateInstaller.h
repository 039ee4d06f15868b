#pragma once

#include "adapters/linux/elevation/Pkexec.h"
#include "ports/UpdateInstaller.h"

#include <QSocketNotifier>

#include <memory>
#include <optional>

namespace ambertide {

/// Hands the package to a helper that polkit's pkexec runs as root, as bytes on its standard input, so that root opens
/// no file of the user's. Main thread. An installation that has begun goes on when this object is destroyed.
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
    std::unique_ptr<QSocketNotifier> m_watch; ///< activated when pkexec has ended
    QObject m_context;                        ///< receives the calls from the event loop
};

} // namespace ambertide
