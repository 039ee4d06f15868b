#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/guardian/KWinGuardian.h"
#include "adapters/linux/displays/guardian/MutterGuardian.h"
#include "adapters/linux/displays/guardian/RandrGuardian.h"
#include "adapters/linux/displays/guardian/WlrootsGuardian.h"

#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace {

using namespace ambertide;

/// How the displays of one kind of display server are guarded. `where` names the server. Returns when nothing is left
/// to do; false when the server cannot be used.
struct Duty
{
    std::string_view kind;
    bool (*run)(const char *where, int channel);
};

/// Becomes the program that restores the calibrations. That is a program of its own because the guardian runs for as
/// long as the displays are tinted, so it has to be small.
void restoreCalibrations(const char *display)
{
    std::error_code error;
    const auto program =
        std::filesystem::read_symlink("/proc/self/exe", error).replace_filename("AmbertideRandrRestorer");
    execl(program.c_str(), program.c_str(), display, nullptr);
}

bool guardRandr(const char *where, int channel)
{
    RandrConnection server(where);
    if (server.state() != RandrConnection::State::usable)
        return false;
    if (RandrGuardian(server, channel).run())
        restoreCalibrations(where);
    return true;
}

constexpr std::array duties{
    Duty{"randr", guardRandr},
    Duty{"wlroots", guardWlroots},
    Duty{"kwin", guardKWin},
    Duty{"mutter", guardMutter},
};

} // namespace

/// Standard input is the channel from the application. Arguments: the kind of display server, and where it is.
int main(int argc, char **argv)
{
    if (argc != 3 || chdir("/") != 0)
        return EXIT_FAILURE;
    // Signals that a terminal or a session manager sends to the whole process group are meant for the application. When
    // they end it, the displays are restored anyway.
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);

    for (const auto &duty : duties) {
        if (duty.kind == argv[1])
            return duty.run(argv[2], STDIN_FILENO) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    return EXIT_FAILURE;
}
