#include "adapters/linux/elevation/helper/ChildProgram.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

namespace ambertide {

namespace {

constexpr std::size_t mostOutput = 64 * 1024;

/// dpkg looks for its own helpers on the path, and its maintainer scripts ask nobody.
char *const *environment()
{
    static char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    static char locale[] = "LC_ALL=C";
    static char frontend[] = "DEBIAN_FRONTEND=noninteractive";
    static char *variables[] = {path, locale, frontend, nullptr};
    return variables;
}

std::optional<pid_t> spawn(const std::vector<std::string> &command, int output)
{
    std::vector<char *> arguments;
    for (const auto &word : command)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, output, STDERR_FILENO);

    // What this program ignores, its child would ignore too.
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigdefault(&attributes, &defaults);

    pid_t child = 0;
    const int error = posix_spawn(&child, arguments[0], &files, &attributes, arguments.data(), environment());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error == 0 ? std::optional(child) : std::nullopt;
}

/// Reads to the end, so that the program never waits for a reader, and keeps the beginning.
std::string readOutput(int pipe)
{
    std::string output;
    std::array<char, 4096> piece{};
    for (;;) {
        const ssize_t count = read(pipe, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return output;
        output.append(piece.data(), std::min(static_cast<std::size_t>(count), mostOutput - output.size()));
    }
}

} // namespace

ProgramResult runProgram(const std::vector<std::string> &command)
{
    ProgramResult result;
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        return result;
    const auto child = spawn(command, pipe[1]);
    close(pipe[1]);
    if (child) {
        result.output = readOutput(pipe[0]);
        int status = 0;
        while (waitpid(*child, &status, 0) < 0 && errno == EINTR) {
        }
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    close(pipe[0]);
    return result;
}

} // namespace ambertide
