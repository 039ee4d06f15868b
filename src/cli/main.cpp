#include "adapters/linux/bus/SdBusApplicationConnection.h"
#include "cli/AmbertideCLI.h"

#include <csignal>
#include <cstdio>
#include <string_view>
#include <vector>

namespace {

bool write(std::FILE *stream, std::string_view text)
{
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

} // namespace

int main(int argc, char *argv[])
{
    // If nobody reads the output any more, write() fails and a message says so; the signal would end this silently.
    std::signal(SIGPIPE, SIG_IGN);

    const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    ambertide::SdBusApplicationConnection application;
    const auto result = ambertide::AmbertideCLI(application).run(arguments);
    write(stderr, result.errors);
    if (!write(stdout, result.output)) {
        write(stderr, "ambertide: the output could not be written\n");
        return ambertide::AmbertideCLI::failure;
    }
    return result.status;
}
