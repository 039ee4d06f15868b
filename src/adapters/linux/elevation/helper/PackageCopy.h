#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace ambertide {

/// A package in a directory that only this user can enter, so that what is verified is what is installed. Directory and
/// file are gone when the object is.
class PackageCopy
{
public:
    /// Reads `source` to its end and writes it below `parent`, a directory that only this user can write to. Nothing
    /// when that fails, or when there are no bytes or more than `mostBytes`; `problem` then says so in one line.
    static std::unique_ptr<PackageCopy> take(int source, const std::string &parent, std::uint64_t mostBytes,
                                             std::string &problem);
    ~PackageCopy();
    PackageCopy(const PackageCopy &) = delete;
    PackageCopy &operator=(const PackageCopy &) = delete;

    const std::string &path() const { return m_path; }
    std::span<const unsigned char> bytes() const { return m_bytes; }

private:
    explicit PackageCopy(std::string directory) : m_directory(std::move(directory)), m_path(m_directory + "/update.deb")
    {
    }
    bool fill(int source, std::uint64_t mostBytes, std::string &problem);
    bool mapFile(int file, std::uint64_t size);

    std::string m_directory;
    std::string m_path;
    std::span<const unsigned char> m_bytes;
};

} // namespace ambertide
