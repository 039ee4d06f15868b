#include "adapters/linux/elevation/helper/PackageCopy.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace ambertide {

namespace {

bool writeAll(int file, std::span<const char> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return false;
        bytes = bytes.subspan(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

std::string lastError(const char *what) { return std::string(what) + ": " + std::strerror(errno); }

} // namespace

std::unique_ptr<PackageCopy> PackageCopy::take(int source, const std::string &parent, std::uint64_t mostBytes,
                                               std::string &problem)
{
    std::string directory = parent + "/ambertide-update-XXXXXX";
    if (mkdtemp(directory.data()) == nullptr) {
        problem = lastError("no directory for the package");
        return nullptr;
    }
    std::unique_ptr<PackageCopy> copy(new PackageCopy(directory));
    return copy->fill(source, mostBytes, problem) ? std::move(copy) : nullptr;
}

PackageCopy::~PackageCopy()
{
    if (!m_bytes.empty())
        munmap(const_cast<unsigned char *>(m_bytes.data()), m_bytes.size());
    unlink(m_path.c_str());
    rmdir(m_directory.c_str());
}

bool PackageCopy::fill(int source, std::uint64_t mostBytes, std::string &problem)
{
    const int file = open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    std::array<char, 64 * 1024> piece{};
    std::uint64_t size = 0;
    ssize_t count = file < 0 ? -1 : 1;
    while (count > 0) {
        count = read(source, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) {
            count = 1;
            continue;
        }
        if (count <= 0)
            break;
        const auto length = static_cast<std::size_t>(count);
        size += length;
        if (size > mostBytes || !writeAll(file, std::span(piece).first(length)))
            break;
    }
    if (size > mostBytes)
        problem = "the package is larger than " + std::to_string(mostBytes) + " bytes";
    else if (count != 0)
        problem = lastError("the package could not be copied");
    else if (size == 0)
        problem = "no package came on standard input";
    else if (!mapFile(file, size))
        problem = lastError("the package could not be read back");
    close(file);
    return problem.empty();
}

bool PackageCopy::mapFile(int file, std::uint64_t size)
{
    const auto length = static_cast<std::size_t>(size);
    void *bytes = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, file, 0);
    if (bytes == MAP_FAILED)
        return false;
    m_bytes = {static_cast<const unsigned char *>(bytes), length};
    return true;
}

} // namespace ambertide
