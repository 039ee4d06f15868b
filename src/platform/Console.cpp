#include "platform/Console.h"

#include <cstdio>
#include <mutex>
#include <string>

namespace ambertide::console {

namespace {

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
    std::string text(line);
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
    std::clearerr(stdout);
}

void redirect(std::function<void(std::string_view)> sink)
{
    const std::scoped_lock lock(outputLock);
    redirection = std::move(sink);
}

} // namespace ambertide::console
