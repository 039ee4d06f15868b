#pragma once

#include "adapters/linux/process/FileDescriptor.h"
#include "ports/PrivilegedRunner.h"

#include <string>

namespace ambertide {

/// polkit's pkexec, which shows the desktop's own prompt and runs the shell under it.
///
/// The installed application names its own administrator shell, so that polkit finds the action whose prompt speaks of
/// Ambertide; without an installation it is the system's shell, and polkit's general prompt is shown.
class PkexecPrivilegedRunner final : public PrivilegedRunner
{
public:
    /// The shell is an absolute path; it is called with "-c" and the command.
    explicit PkexecPrivilegedRunner(std::string shell = installedShell());

    /// The application's own shell for this, where one is installed; otherwise /bin/sh.
    static std::string installedShell();

    PrivilegedResult run(const std::string &command) override;
    void cancel() override;

private:
    const std::string m_shell;
    FileDescriptor m_cancellation; ///< readable from the first cancel() on
};

} // namespace ambertide
