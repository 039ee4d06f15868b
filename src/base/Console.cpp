#include "base/Console.h"

#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <mutex>
#include <string>
#include <tuple>

namespace ambertide::console {

namespace {

constexpr std::size_t longestLine = PIPE_BUF - 1;

std::mutex outputLock;
std::function<void(std::string_view)> redirection;

} // namespace

void print(std::string_view line)
{
    const std::scoped_lock lock(outputLock);
    if (redirection) {
        redirection(line);
        return;
    }
    std::string text(line.substr(0, longestLine));
    text += '\n';
    // A pipe that is ready for writing takes this many bytes without waiting for its reader.
    pollfd output = {.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
    if (poll(&output, 1, 0) == 1 && (output.revents & POLLOUT) != 0)
        std::ignore = write(STDOUT_FILENO, text.data(), text.size());
}

void redirect(std::function<void(std::string_view)> sink)
{
    const std::scoped_lock lock(outputLock);
    redirection = std::move(sink);
}

} // namespace ambertide::console
