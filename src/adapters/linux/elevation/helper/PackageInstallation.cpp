#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include "adapters/linux/elevation/helper/PackageCopy.h"
#include "adapters/linux/process/ChildProcess.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace ambertide {

namespace {

constexpr std::size_t longestLine = 300;

/// dpkg looks for its own helpers on the path, and its maintainer scripts ask nobody.
ChildProcessEnd run(std::vector<std::string> command)
{
    ChildStart start{.arguments = std::move(command)};
    start.environment =
        std::vector<std::string>{"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL=C", "DEBIAN_FRONTEND=noninteractive"};
    return ChildProcess(std::move(start), ChildProcess::Kept::AllOutput).wait();
}

std::string lastLine(std::string_view output)
{
    while (!output.empty() && output.back() == '\n')
        output.remove_suffix(1);
    const auto start = output.rfind('\n');
    return std::string(output.substr(start == std::string_view::npos ? 0 : start + 1).substr(0, longestLine));
}

/// The one line that a program answers with; nothing when it fails or answers otherwise.
std::optional<std::string> answer(std::vector<std::string> command, const std::vector<std::string> &arguments)
{
    command.insert(command.end(), arguments.begin(), arguments.end());
    auto end = run(std::move(command));
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

/// Whether the text can be a Debian version, so that it can stand among a program's arguments.
bool isVersion(std::string_view text)
{
    static constexpr std::string_view allowed = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.+-~:";
    return !text.empty() && text.front() >= '0' && text.front() <= '9' &&
           text.find_first_not_of(allowed) == std::string_view::npos;
}

/// The version of the package that is installed here; nothing when none is.
std::optional<std::string> installedVersion(const InstallationRules &rules)
{
    static constexpr std::string_view mark = "installed ";
    const auto line =
        answer(rules.query, {"--show", "--showformat=${db:Status-Status} ${Version}\n", rules.packageName});
    if (!line || !line->starts_with(mark))
        return std::nullopt;
    return line->substr(mark.size());
}

std::string problemWithNameAndArchitecture(const InstallationRules &rules, const std::string &package)
{
    if (field(package, "Package") != rules.packageName)
        return "the file is no package of " + rules.packageName;
    const auto architecture = field(package, "Architecture");
    if (architecture != "all" && architecture != answer({"/usr/bin/dpkg"}, {"--print-architecture"}))
        return "the package is for another architecture";
    return {};
}

std::string problemWithVersion(const InstallationRules &rules, const std::string &package)
{
    const auto version = field(package, "Version");
    if (!version || !isVersion(*version))
        return "the package has no version";
    const auto installed = installedVersion(rules);
    if (!installed)
        return rules.packageName + " was not installed as a package here; update it the way it was installed";
    if (!run({"/usr/bin/dpkg", "--compare-versions", *version, "gt", *installed}).isExit(0))
        return "version " + *version + " is not newer than the installed " + *installed;
    return {};
}

} // namespace

std::string installPackage(const InstallationRules &rules, int source, std::string_view signature)
{
    std::string problem;
    const auto bytes = readPackage(source, rules.mostBytes, problem);
    if (!bytes)
        return problem;
    if (!rules.verifier.accepts(*bytes, signature))
        return "the package is not signed with the key of this application";
    const PackageCopy package(*bytes, rules.directory);
    if (package.path().empty())
        return "the package could not be stored";
    // Only what is signed is handed to programs that take it apart.
    if (problem = problemWithNameAndArchitecture(rules, package.path()); !problem.empty())
        return problem;
    if (problem = problemWithVersion(rules, package.path()); !problem.empty())
        return problem;
    auto command = rules.install;
    command.push_back(package.path());
    const auto end = run(std::move(command));
    return end.isExit(0) ? std::string() : "the package would not install: " + lastLine(end.output);
}

} // namespace ambertide
