#include "integration/CLIInstaller.h"

#include "ports/MainBundle.h"
#include "ports/PrivilegedRunner.h"

#include <QCoreApplication>

#include <cassert>
#include <system_error>
#include <utility>

namespace ambertide {

namespace {

using CLIError = CLIInstaller::CLIError;

CLIInstaller *sharedInstaller = nullptr;

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(ambertide::CLIInstaller)

public:
    static QString describe(CLIError::Case code, const std::optional<QString> &reason)
    {
        const QString message = reason.value_or(tr("Unknown error"));
        switch (code) {
        case CLIError::Case::InstallationFailed:
            return tr("Failed to install the CLI tool: %1").arg(message);
        case CLIError::Case::UninstallationFailed:
            return tr("Failed to uninstall the CLI tool: %1").arg(message);
        case CLIError::Case::BundleNotFound:
            return tr("Could not find CLI executable in app bundle");
        case CLIError::Case::ScriptCreationFailed:
            return tr("Failed to create installation script");
        }
        return {};
    }
};

void runAsAdministrator(PrivilegedRunner &runner, const std::string &command, CLIError::Case failure)
{
    const auto result = runner.run(command);
    if (result.status == PrivilegedResult::Status::Rejected)
        throw CLIError(CLIError::Case::ScriptCreationFailed);
    if (result.status == PrivilegedResult::Status::Failed)
        throw CLIError(failure, result.message);
}

bool fileExists(const std::filesystem::path &path)
{
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

} // namespace

CLIInstaller::CLIError::CLIError(Case code, const std::optional<QString> &message)
    : m_code(code), m_description(Texts::describe(code, message))
{
}

CLIInstaller::CLIInstaller(const MainBundle &bundle, PrivilegedRunner &runner, std::filesystem::path cliPath)
    : m_cliPath(std::move(cliPath)), m_bundle(bundle), m_runner(runner)
{
}

void CLIInstaller::makeShared(const MainBundle &bundle, PrivilegedRunner &runner)
{
    assert(sharedInstaller == nullptr);
    sharedInstaller = new CLIInstaller(bundle, runner);
}

CLIInstaller &CLIInstaller::shared()
{
    assert(sharedInstaller != nullptr);
    return *sharedInstaller;
}

bool CLIInstaller::isInstalled() const { return fileExists(m_cliPath); }

void CLIInstaller::install()
{
    const auto tool = m_bundle.path() / "Contents/MacOS/AmbertideCLI";
    if (!fileExists(tool))
        throw CLIError(CLIError::Case::BundleNotFound);
    const auto command = "mkdir -p /usr/local/bin && ln -sf '" + tool.string() + "' '" + m_cliPath.string() + "'";
    runAsAdministrator(m_runner, command, CLIError::Case::InstallationFailed);
}

void CLIInstaller::uninstall()
{
    if (!isInstalled())
        return;
    runAsAdministrator(m_runner, "rm -f '" + m_cliPath.string() + "'", CLIError::Case::UninstallationFailed);
}

} // namespace ambertide
