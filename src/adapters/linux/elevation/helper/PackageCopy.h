#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ambertide {

/// All bytes up to the end of `source`. Nothing when they cannot be read, or are none or more than `mostBytes`;
/// `problem` then says so in one line.
std::optional<std::vector<unsigned char>> readPackage(int source, std::uint64_t mostBytes, std::string &problem);

/// A package in a directory that only this user can enter, so that what was verified is what is installed. Directory
/// and file are gone when the object is.
class PackageCopy
{
public:
    /// `parent` is a directory that only this user can write to. Empty `path()` when the copy cannot be made.
    PackageCopy(std::span<const unsigned char> bytes, const std::string &parent);
    ~PackageCopy();
    PackageCopy(const PackageCopy &) = delete;
    PackageCopy &operator=(const PackageCopy &) = delete;

    const std::string &path() const { return m_path; }

private:
    std::string m_directory;
    std::string m_path;
};

} // namespace ambertide
