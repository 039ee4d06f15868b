// Installs an update of Ambertide. Runs as root, called through pkexec by the application, which is not trusted: the
// package comes as bytes on standard input, its signature and its version as the arguments, and the keys are part of
// this program.

#include "adapters/linux/elevation/helper/InstallationStatus.h"
#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <system_error>

namespace {

using ambertide::InstallationEnd;
using Outcome = ambertide::UpdateInstaller::Outcome;

/// Where systemd runs, has it run this program again in a unit of the system, with the same standard streams, since a
/// logout kills what belongs to the session and could leave a package half-installed. Returns in that unit, and where
/// there is no systemd.
void leaveTheSession(char *arguments[])
{
    if (getenv("PKEXEC_UID") == nullptr || access("/run/systemd/system", F_OK) != 0)
        return;
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    // KillMode=mixed: when the unit is stopped, only this program gets SIGTERM, so that apt can finish.
    execl("/usr/bin/systemd-run", "systemd-run", "--quiet", "--collect", "--wait", "--pipe", "--service-type=exec",
          "--property=KillMode=mixed", "--property=TimeoutStopSec=15min", "--description=Ambertide's update", "--",
          program.c_str(), arguments[1], arguments[2], nullptr);
}

/// Resets everything that the caller could influence besides the package's bytes.
void leaveTheCaller()
{
    clearenv();
    umask(0077);
    close_range(3, ~0U, 0);
    // The application may exit in the middle of an installation, which must not leave a package half-installed.
    for (const int signal : {SIGHUP, SIGINT, SIGPIPE})
        ::signal(signal, SIG_IGN);
}

/// A descriptor that becomes readable on SIGTERM, which from then on does not end this process by itself.
int openTermination()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

InstallationEnd install(const char *signature, const char *version)
{
    const auto verifier = ambertide::SignatureVerifier::withPublicKeys(AMBERTIDE_FEED_PUBLIC_KEY);
    if (!verifier)
        return {Outcome::Failed, "this build carries no key to verify updates with"};
    if (geteuid() != 0 || chdir("/") != 0)
        return {Outcome::Failed, "only the administrator can install updates"};
    ambertide::InstallationRules rules{*verifier, "ambertide", "/var/lib/ambertide-update"};
    rules.termination = openTermination();
    return ambertide::installPackage(rules, STDIN_FILENO, signature, version);
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    if (argumentCount != 3) {
        std::fputs("usage: AmbertideInstallHelper SIGNATURE VERSION < PACKAGE\n", stderr);
        return 2;
    }
    leaveTheSession(arguments);
    leaveTheCaller();
    InstallationEnd end;
    try {
        end = install(arguments[1], arguments[2]);
    } catch (const std::exception &error) {
        end.problem = error.what();
    }
    if (!end.problem.empty())
        std::fprintf(stderr, "%s\n", end.problem.c_str());
    return ambertide::installationStatus(end.outcome);
}
