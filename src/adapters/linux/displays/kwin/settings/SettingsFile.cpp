#include "adapters/linux/displays/kwin/settings/SettingsFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace ambertide::settings_file {

namespace {

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return m_descriptor; }

private:
    const int m_descriptor;
};

/// The file itself, or where a link leads in the end. Nothing, with errno set, when a link leads nowhere.
std::optional<std::string> targetOf(const std::string &file)
{
    char *const target = realpath(file.c_str(), nullptr);
    if (target) {
        std::string text = target;
        std::free(target);
        return text;
    }
    struct stat status = {};
    const bool isLink = errno != ENOENT || lstat(file.c_str(), &status) == 0;
    return isLink ? std::nullopt : std::optional(file);
}

bool writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const auto length = write(descriptor, text.data(), text.size());
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

} // namespace

std::optional<std::string> read(const std::string &file)
{
    const Descriptor source(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (source.get() < 0)
        return errno == ENOENT ? std::optional(std::string()) : std::nullopt;
    struct stat status = {};
    const bool isFile = fstat(source.get(), &status) == 0 && S_ISREG(status.st_mode);
    if (!isFile || status.st_size > mostBytes) {
        errno = isFile ? EFBIG : EINVAL;
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        const auto length = ::read(source.get(), text.data() + size, text.size() - size);
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0)
            return std::nullopt;
        if (length == 0)
            break;
        size += static_cast<std::size_t>(length);
    }
    text.resize(size);
    return text;
}

std::string folderOf(const std::string &file) { return file.substr(0, file.rfind('/')); }

void makeFolder(const std::string &folder)
{
    for (auto end = folder.find('/', 1); end != std::string::npos; end = folder.find('/', end + 1))
        mkdir(folder.substr(0, end).c_str(), S_IRWXU);
    mkdir(folder.c_str(), S_IRWXU);
}

bool replace(const std::string &file, const std::string &expected, const std::string &text)
{
    const auto found = targetOf(file);
    if (!found)
        return false;
    const auto &target = *found;
    const auto folder = folderOf(target);
    makeFolder(folder);
    struct stat status = {};
    const bool isThere = stat(target.c_str(), &status) == 0;
    const mode_t mode = isThere ? status.st_mode & 07777 : S_IRUSR | S_IWUSR;
    if (isThere && access(target.c_str(), W_OK) != 0)
        return false;
    std::string name = folder + "/." + target.substr(folder.size() + 1) + ".XXXXXX";
    const Descriptor fresh(mkostemp(name.data(), O_CLOEXEC));
    if (fresh.get() < 0)
        return false;
    const bool isReady = writeAll(fresh.get(), text) && fchmod(fresh.get(), mode) == 0 && fsync(fresh.get()) == 0;
    const bool isAsExpected = isReady && read(target) == expected; // as late as possible: the above takes time
    if (!isAsExpected || std::rename(name.c_str(), target.c_str()) != 0) {
        const int failure = isReady && !isAsExpected ? ESTALE : errno;
        unlink(name.c_str());
        errno = failure;
        return false;
    }
    const Descriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    fsync(directory.get());
    return true;
}

} // namespace ambertide::settings_file
