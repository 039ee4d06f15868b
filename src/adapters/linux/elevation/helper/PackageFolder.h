#pragma once

#include "adapters/linux/process/FileDescriptor.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ambertide {

/// All bytes up to the end of `source`. Nothing when they cannot be read, or are none or more than `mostBytes`, when
/// they take longer than `time` together, or when `termination` becomes readable before; `problem` then says so in one
/// line.
std::optional<std::vector<unsigned char>> readPackage(int source, std::uint64_t mostBytes, std::chrono::seconds time,
                                                      int termination, std::string &problem);

/// A folder that only this user can enter and only one process works in, for a package, so that what was verified is
/// what is installed. What an earlier process left there goes first; the folder goes with the object.
class PackageFolder
{
public:
    /// Its parent is a folder that only this user can write to.
    explicit PackageFolder(std::string path);
    ~PackageFolder();
    PackageFolder(const PackageFolder &) = delete;
    PackageFolder &operator=(const PackageFolder &) = delete;

    bool isBusy() const { return m_error == EWOULDBLOCK; } ///< another process works in it

    /// Returns the system's error number; 0 when the package is in the file.
    int store(std::span<const unsigned char> bytes);
    std::string file() const { return m_path + "/update.deb"; }

private:
    const std::string m_path;
    FileDescriptor m_folder; ///< locked
    int m_error = 0;
};

} // namespace ambertide
