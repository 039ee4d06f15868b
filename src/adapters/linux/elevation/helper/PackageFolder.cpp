#include "adapters/linux/elevation/helper/PackageFolder.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace ambertide {

namespace {

using Clock = std::chrono::steady_clock;

/// Waits until there is something to read, or the end. Returns why there is not; empty when there is.
std::string waitFor(int source, int termination, Clock::time_point deadline)
{
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        std::array<pollfd, 2> events = {{{source, POLLIN, 0}, {termination, POLLIN, 0}}};
        const int count = ::poll(events.data(), events.size(), static_cast<int>(std::max<std::int64_t>(left, 0)));
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0)
            return "the package did not come in time";
        if (events[1].revents != 0)
            return "asked to end before the package had come";
        return {};
    }
}

void removeAllIn(const std::string &folder)
{
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(folder, error)) {
        std::error_code ignored;
        std::filesystem::remove_all(entry.path(), ignored);
    }
}

} // namespace

std::optional<std::vector<unsigned char>> readPackage(int source, std::uint64_t mostBytes, std::chrono::seconds time,
                                                      int termination, std::string &problem)
{
    const auto deadline = Clock::now() + time;
    std::vector<unsigned char> bytes;
    std::array<unsigned char, 64 * 1024> piece{};
    while (bytes.size() <= mostBytes) {
        problem = waitFor(source, termination, deadline);
        if (!problem.empty())
            return std::nullopt;
        const ssize_t count = ::read(source, piece.data(), piece.size());
        if (count == 0)
            break;
        if (count > 0)
            bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
        else if (errno != EINTR && errno != EAGAIN)
            problem = std::string("the package could not be read: ") + std::strerror(errno);
        if (!problem.empty())
            return std::nullopt;
    }
    if (bytes.size() > mostBytes)
        problem = "the package is larger than " + std::to_string(mostBytes) + " bytes";
    else if (bytes.empty())
        problem = "no package came on standard input";
    return problem.empty() ? std::optional(std::move(bytes)) : std::nullopt;
}

PackageFolder::PackageFolder(std::string path) : m_path(std::move(path))
{
    if (::mkdir(m_path.c_str(), 0700) != 0 && errno != EEXIST) {
        m_error = errno;
        return;
    }
    FileDescriptor folder(::open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.isOpen() || ::flock(folder.get(), LOCK_EX | LOCK_NB) != 0) {
        m_error = errno;
        return;
    }
    m_folder = std::move(folder);
    removeAllIn(m_path);
}

PackageFolder::~PackageFolder()
{
    if (!m_folder.isOpen())
        return;
    removeAllIn(m_path);
    ::rmdir(m_path.c_str());
}

int PackageFolder::store(std::span<const unsigned char> bytes)
{
    if (m_error != 0)
        return m_error;
    const FileDescriptor output(
        ::openat(m_folder.get(), "update.deb", O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!output.isOpen())
        return errno;
    while (!bytes.empty()) {
        const ssize_t count = ::write(output.get(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return errno;
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return ::fsync(output.get()) == 0 ? 0 : errno;
}

} // namespace ambertide
