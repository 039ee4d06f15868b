#include "adapters/linux/elevation/helper/PackageCopy.h"

#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace ambertide {

std::optional<std::vector<unsigned char>> readPackage(int source, std::uint64_t mostBytes, std::string &problem)
{
    std::vector<unsigned char> bytes;
    std::array<unsigned char, 64 * 1024> piece{};
    ssize_t count = 1;
    while (count > 0 && bytes.size() <= mostBytes) {
        do
            count = read(source, piece.data(), piece.size());
        while (count < 0 && errno == EINTR);
        if (count > 0)
            bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
    }
    if (count < 0)
        problem = std::string("the package could not be read: ") + std::strerror(errno);
    else if (bytes.size() > mostBytes)
        problem = "the package is larger than " + std::to_string(mostBytes) + " bytes";
    else if (bytes.empty())
        problem = "no package came on standard input";
    return problem.empty() ? std::optional(std::move(bytes)) : std::nullopt;
}

PackageCopy::PackageCopy(std::span<const unsigned char> bytes, const std::string &parent)
    : m_directory(parent + "/ambertide-update-XXXXXX")
{
    if (mkdtemp(m_directory.data()) == nullptr) {
        m_directory.clear(); // nothing to take away
        return;
    }
    const std::string path = m_directory + "/update.deb";
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (file)
        m_path = path;
}

PackageCopy::~PackageCopy()
{
    std::error_code error;
    std::filesystem::remove_all(m_directory, error);
}

} // namespace ambertide
