#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include "adapters/linux/elevation/helper/ChildProgram.h"
#include "adapters/linux/elevation/helper/PackageCopy.h"

#include <algorithm>
#include <optional>

namespace ambertide {

namespace {

constexpr std::size_t longestLine = 300;

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
    auto result = runProgram(command);
    if (result.output.ends_with('\n'))
        result.output.pop_back();
    if (result.status != 0 || result.output.empty() || result.output.find('\n') != std::string::npos)
        return std::nullopt;
    return result.output;
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
    if (runProgram({"/usr/bin/dpkg", "--compare-versions", *version, "gt", *installed}).status != 0)
        return "version " + *version + " is not newer than the installed " + *installed;
    return {};
}

} // namespace

std::string installPackage(const InstallationRules &rules, int source, std::string_view signature)
{
    std::string problem;
    const auto package = PackageCopy::take(source, rules.directory, rules.mostBytes, problem);
    if (!package)
        return problem;
    if (!rules.verifier.accepts(package->bytes(), signature))
        return "the package is not signed with the key of this application";
    // Only what is signed is handed to programs that take it apart.
    if (problem = problemWithNameAndArchitecture(rules, package->path()); !problem.empty())
        return problem;
    if (problem = problemWithVersion(rules, package->path()); !problem.empty())
        return problem;
    auto command = rules.install;
    command.push_back(package->path());
    const auto result = runProgram(command);
    return result.status == 0 ? std::string() : "the package would not install: " + lastLine(result.output);
}

} // namespace ambertide
