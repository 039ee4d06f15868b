#pragma once

#include <QString>

#include <exception>
#include <filesystem>
#include <optional>

namespace ambertide {

class MainBundle;
class PrivilegedRunner;

/// Puts the command-line tool of the bundle on the user's path, as a symbolic link, and takes it away again. Holds no
/// state between calls; any thread, but see install().
class CLIInstaller
{
public:
    class CLIError;

    /// Where the link is placed.
    static constexpr const char *defaultPath = "/usr/local/bin/ambertide";

    /// Both ports must outlive the installer. Another `cliPath` is for tests.
    CLIInstaller(const MainBundle &bundle, PrivilegedRunner &runner, std::filesystem::path cliPath = defaultPath);

    /// Makes the shared instance, once, before anything asks for it. It is never released.
    static void makeShared(const MainBundle &bundle, PrivilegedRunner &runner);
    static CLIInstaller &shared();

    /// Also false for a link whose target is gone.
    bool isInstalled() const;

    /// Creates or replaces the link. Blocks until the administrator prompt has been answered and the command has ended:
    /// not for the main thread. Throws CLIError.
    void install();
    /// Removes the link; blocks and throws as install() does. Returns at once, without a prompt, if nothing is
    /// installed.
    void uninstall();

private:
    const std::filesystem::path m_cliPath;
    const MainBundle &m_bundle;
    PrivilegedRunner &m_runner;
};

class CLIInstaller::CLIError : public std::exception
{
public:
    enum class Case { InstallationFailed, UninstallationFailed, BundleNotFound, ScriptCreationFailed };

    /// The first two cases carry a message; without one the description says "Unknown error".
    explicit CLIError(Case code, const std::optional<QString> &message = {});

    Case code() const { return m_code; }
    const QString &errorDescription() const { return m_description; }

private:
    Case m_code;
    QString m_description;
};

} // namespace ambertide
