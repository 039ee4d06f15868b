#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include "adapters/linux/elevation/helper/PackageFolder.h"
#include "adapters/linux/process/ChildProcess.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

namespace ambertide {

namespace {

using Outcome = UpdateInstaller::Outcome;

constexpr std::size_t longestLine = 300;

/// dpkg finds its own helpers through PATH. Maintainer scripts must not ask questions: nobody would see them.
ChildProcessEnd run(std::vector<std::string> command)
{
    ChildStart start{.arguments = std::move(command)};
    start.environment =
        std::vector<std::string>{"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL=C", "DEBIAN_FRONTEND=noninteractive"};
    return ChildProcess(std::move(start), ChildProcess::Kept::AllOutput).wait();
}

ChildProcessEnd runWith(std::vector<std::string> command, const std::vector<std::string> &arguments)
{
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(std::move(command));
}

/// The end of the output, where the reason usually is, as one line.
std::string endOf(const std::string &output)
{
    std::string end = output.substr(output.size() - std::min(output.size(), longestLine));
    std::ranges::replace_if(
        end, [](char each) { return static_cast<unsigned char>(each) < ' '; }, ' ');
    return end;
}

/// The single line that a program prints; nothing when it fails or prints anything else.
std::optional<std::string> answer(std::vector<std::string> command, const std::vector<std::string> &arguments)
{
    auto end = runWith(std::move(command), arguments);
    const bool isWhole = end.output.size() < ChildProcess::mostKept;
    if (end.output.ends_with('\n'))
        end.output.pop_back();
    if (!end.isExit(0) || !isWhole || end.output.empty() || end.output.find('\n') != std::string::npos)
        return std::nullopt;
    return end.output;
}

std::optional<std::string> field(const std::string &package, const char *name)
{
    return answer({"/usr/bin/dpkg-deb"}, {"--field", package, name});
}

/// Whether the text looks like a Debian version, and so is safe among a program's arguments: it cannot be an option.
bool isVersion(std::string_view text)
{
    static constexpr std::string_view allowed = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.+-~:";
    return !text.empty() && text.front() >= '0' && text.front() <= '9' &&
           text.find_first_not_of(allowed) == std::string_view::npos;
}

/// The package as it is on this system; `version` is empty when a failed installation has left none.
struct PresentPackage
{
    bool isWhole = false;
    std::string version;
};

/// Nothing when it is not installed, or only its configuration is left.
std::optional<PresentPackage> presentPackage(const InstallationRules &rules)
{
    const auto line =
        answer(rules.query, {"--show", "--showformat=${db:Status-Abbrev}|${Version}\n", rules.packageName});
    const auto bar = line ? line->find('|') : std::string::npos;
    if (bar < 2 || bar == std::string::npos)
        return std::nullopt;
    const char state = line->at(1); // the second letter is the present state; a third one marks an error
    if (state == 'n' || state == 'c')
        return std::nullopt;
    return PresentPackage{line->substr(1, bar - 1) == "i ", line->substr(bar + 1)};
}

/// The version without the Debian revision, which the feed does not name.
std::string_view upstream(std::string_view version) { return version.substr(0, version.rfind('-')); }

/// Why this package must not be installed here; nothing when it may be.
std::optional<InstallationEnd> refusal(const InstallationRules &rules, const std::string &package,
                                       std::string_view announced)
{
    constexpr auto wrong = Outcome::WrongPackage;
    if (field(package, "Package") != rules.packageName)
        return InstallationEnd{wrong, "the file is no package of " + rules.packageName};
    const auto architecture = field(package, "Architecture");
    if (architecture != "all" && architecture != answer({"/usr/bin/dpkg"}, {"--print-architecture"}))
        return InstallationEnd{wrong, "the package is for another architecture"};
    const auto version = field(package, "Version");
    if (!version || !isVersion(*version))
        return InstallationEnd{wrong, "the package has no version"};
    if (announced != *version && announced != upstream(*version))
        return InstallationEnd{wrong,
                               "the package is of version " + *version + ", which is not the one that was announced"};
    const auto present = presentPackage(rules);
    if (!present)
        return InstallationEnd{Outcome::NotAPackage, rules.packageName + " was not installed as a package here"};
    if (!run({"/usr/bin/dpkg", "--compare-versions", *version, "gt", present->version}).isExit(0))
        return InstallationEnd{Outcome::NotNewer, "version " + *version + " is not newer than " + present->version};
    return std::nullopt;
}

/// A package that was left half-installed is configured first, because dpkg may refuse to install anything before. If
/// that fails, the new package replaces it all the same.
ChildProcessEnd install(const InstallationRules &rules, const std::string &package)
{
    const auto present = presentPackage(rules);
    if (!present || !present->isWhole)
        runWith(rules.dpkg, {"--configure", "--pending"});
    return runWith(rules.install, {package});
}

Outcome outcomeOf(const ChildProcessEnd &end)
{
    const auto tells = [&end](const char *words) { return end.output.find(words) != std::string::npos; };
    if (end.isExit(0))
        return Outcome::Installed;
    if (tells("No space left on device") || tells("You don't have enough free space"))
        return Outcome::NoRoom;
    return tells("Could not get lock") ? Outcome::Busy : Outcome::Failed;
}

bool isReadable(int descriptor)
{
    pollfd event = {descriptor, POLLIN, 0};
    return ::poll(&event, 1, 0) > 0;
}

} // namespace

InstallationEnd installPackage(const InstallationRules &rules, int source, std::string_view signature,
                               std::string_view version)
{
    PackageFolder folder(rules.folder);
    if (folder.isBusy())
        return {Outcome::Busy, "another update is being installed"};
    InstallationEnd end;
    const auto bytes = readPackage(source, rules.mostBytes, rules.inputTime, rules.termination, end.problem);
    if (!bytes)
        return end;
    if (!rules.verifier.accepts(*bytes, signature))
        return {Outcome::BadSignature, "the package is not signed with the key of this application"};
    if (const int error = folder.store(*bytes); error != 0)
        return {error == ENOSPC || error == EDQUOT ? Outcome::NoRoom : Outcome::Failed,
                std::string("the package could not be stored: ") + std::strerror(error)};
    // Nothing is handed to programs that parse it before its signature has been verified.
    if (auto refused = refusal(rules, folder.file(), version))
        return *refused;
    if (isReadable(rules.termination))
        return {Outcome::Failed, "asked to end before the installation had begun"};
    const auto installed = install(rules, folder.file());
    end.outcome = outcomeOf(installed);
    // The trouble may be another package's: then this one is installed all the same.
    const auto present = presentPackage(rules);
    if (present && present->isWhole && present->version == field(folder.file(), "Version"))
        end.outcome = Outcome::Installed;
    if (end.outcome != Outcome::Installed)
        end.problem = "the package would not install: " + endOf(installed.output);
    return end;
}

} // namespace ambertide
