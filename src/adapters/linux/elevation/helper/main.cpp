// Installs an update of Ambertide. Runs as root, called through pkexec by the application, which is not trusted: the
// package comes as bytes on standard input, its signature as the one argument, and the key is part of this program.

#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <string>

namespace {

/// Takes away what the caller could influence besides the bytes.
void leaveTheCaller()
{
    clearenv();
    umask(0077);
    close_range(3, ~0U, 0);
    // The application may go away in the middle; a half-installed package would stay.
    for (const int signal : {SIGHUP, SIGINT, SIGPIPE})
        ::signal(signal, SIG_IGN);
}

std::string install(const char *signature)
{
    const auto verifier = ambertide::SignatureVerifier::withPublicKey(AMBERTIDE_FEED_PUBLIC_KEY);
    if (!verifier)
        return "this build carries no key to verify updates with";
    if (geteuid() != 0 || chdir("/") != 0)
        return "only the administrator can install updates";
    return ambertide::installPackage({*verifier, "ambertide", "/var/lib"}, STDIN_FILENO, signature);
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    if (argumentCount != 2) {
        std::fputs("usage: AmbertideInstallHelper SIGNATURE < PACKAGE\n", stderr);
        return 2;
    }
    leaveTheCaller();
    std::string problem;
    try {
        problem = install(arguments[1]);
    } catch (const std::exception &error) {
        problem = error.what();
    }
    if (problem.empty())
        return 0;
    std::fprintf(stderr, "%s\n", problem.c_str());
    return 1;
}
