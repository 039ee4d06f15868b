#pragma once

#include "adapters/linux/elevation/Pkexec.h"
#include "adapters/linux/process/FileDescriptor.h"
#include "ports/PrivilegedRunner.h"

#include <filesystem>
#include <string>

namespace ambertide {

/// Carries out the two administrator commands of this application, which install and remove its command-line tool, and
/// rejects all others. No text is handed to a shell: polkit's pkexec, which shows the desktop's own prompt, runs a
/// program of the bundle that can do only these two things.
class PkexecPrivilegedRunner final : public PrivilegedRunner
{
public:
    /// `programs` is the folder of the bundle's programs, an absolute path.
    explicit PkexecPrivilegedRunner(std::filesystem::path programs, std::string pkexec = systemPkexec);

    PrivilegedResult run(const std::string &command) override;
    void cancel() override;

private:
    const std::filesystem::path m_programs;
    const std::string m_pkexec;
    FileDescriptor m_cancellation; ///< readable from the first cancel() on
};

} // namespace ambertide
