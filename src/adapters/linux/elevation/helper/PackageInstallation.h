#pragma once

#include "ports/UpdateInstaller.h"
#include "update/signature/SignatureVerifier.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ambertide {

/// What may be installed, and by which programs. Every command is a path and its first arguments.
struct InstallationRules
{
    SignatureVerifier verifier;
    std::string packageName;
    std::string folder; ///< for the package; only this user can write to its parent
    std::uint64_t mostBytes = 128 * 1024 * 1024;
    std::chrono::seconds inputTime = std::chrono::seconds(60);
    int termination = -1; ///< readable once this process was asked to end
    std::vector<std::string> dpkg = {"/usr/bin/dpkg", "--force-confold"};
    std::vector<std::string> query = {"/usr/bin/dpkg-query"};
    std::vector<std::string> install = {"/usr/bin/apt-get",
                                        "--quiet",
                                        "--yes",
                                        "--no-remove",
                                        "--no-install-recommends",
                                        "-o",
                                        "Dpkg::Options::=--force-confold",
                                        "-o",
                                        "DPkg::Lock::Timeout=60",
                                        "install",
                                        "--"};
};

struct InstallationEnd
{
    UpdateInstaller::Outcome outcome = UpdateInstaller::Outcome::Failed;
    std::string problem; ///< in one line; empty when the new version is installed
};

/// Installs the package that `source` holds, provided that it is signed with the key, has the right name, architecture
/// and version, and is newer than the one on this system, whatever state that is in. The very bytes that were verified
/// are installed. Stops early when asked to end, but never while the package is being installed.
InstallationEnd installPackage(const InstallationRules &rules, int source, std::string_view signature,
                               std::string_view version);

} // namespace ambertide
