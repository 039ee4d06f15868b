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

/// Reads all bytes up to the end of `source`. Nothing when they cannot be read, when there are none or more than
/// `mostBytes`, when reading takes longer than `time` in all, or when `termination` becomes readable before the end;
/// `problem` then says so in one line.
std::optional<std::vector<unsigned char>> readPackage(int source, std::uint64_t mostBytes, std::chrono::seconds time,
                                                      int termination, std::string &problem);

/// A folder for a package which only this user can enter and only one process at a time uses, so that what was verified
/// is what is installed. Whatever an earlier process left there is removed at once; the folder is removed along with
/// the object.
class PackageFolder
{
public:
    /// The parent of `path` must be a folder that only this user can write to.
    explicit PackageFolder(std::string path);
    ~PackageFolder();
    PackageFolder(const PackageFolder &) = delete;
    PackageFolder &operator=(const PackageFolder &) = delete;

    bool isBusy() const { return m_error == EWOULDBLOCK; } ///< another process uses it

    /// Writes the package to file(). Returns 0 or the system's error number.
    int store(std::span<const unsigned char> bytes);
    std::string file() const { return m_path + "/update.deb"; }

private:
    const std::string m_path;
    FileDescriptor m_folder; ///< locked
    int m_error = 0;
};

} // namespace ambertide
