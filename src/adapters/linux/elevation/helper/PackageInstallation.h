#pragma once

#include "update/signature/SignatureVerifier.h"

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
    std::string directory; ///< for the copy; only this user can write to it
    std::uint64_t mostBytes = 128 * 1024 * 1024;
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

/// Installs the package that `source` holds, provided that it is signed with the key, has the right name and
/// architecture, and is newer than the installed one. The very bytes that were verified are installed. Returns what
/// went wrong, in one line; empty when the new version is installed.
std::string installPackage(const InstallationRules &rules, int source, std::string_view signature);

} // namespace ambertide
