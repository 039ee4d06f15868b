#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"

#include "adapters/linux/process/ChildProcess.h"

#include <QCoreApplication>
#include <QString>

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

namespace ambertide {

namespace {

using Kind = ChildProcessEnd::Kind;
using Status = PrivilegedResult::Status;

/// What Linux takes as one argument of a program, its final NUL counted.
constexpr std::size_t maximumArgument = std::size_t{128} * 1024;

/// What pkexec writes before its own exit with 126 or 127, and what that means to a person. It translates none of it.
struct Refusal
{
    std::string_view sign;
    const char *message;
};
constexpr std::array refusals = {
    Refusal{"Error executing command as another user: Request dismissed",
            QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner", "the request for administrator rights was cancelled")},
    Refusal{"Error executing command as another user: Not authorized",
            QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner", "administrator rights were not granted")},
    Refusal{"Error executing command as another user: No authentication agent found",
            QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner", "nothing in this session can ask for an administrator's "
                                                             "password (no polkit authentication agent is running)")},
    Refusal{"Error getting authority: ",
            QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner",
                              "the service that grants administrator rights (polkit) cannot be reached")},
    Refusal{"Error checking for authorization ",
            QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner",
                              "the service that grants administrator rights (polkit) gave no answer")},
    Refusal{"pkexec must be setuid root",
            QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner",
                              "pkexec, which asks for administrator rights, is not set up to do so on this system")},
};

std::string translated(const char *message)
{
    return QCoreApplication::translate("ambertide::PrivilegedRunner", message).toStdString();
}

/// One line of valid text without control characters.
std::string oneLine(const std::string &output)
{
    QString text = QString::fromUtf8(output.data(), static_cast<qsizetype>(output.size()));
    for (auto &character : text) {
        if (character.category() == QChar::Other_Control)
            character = u' ';
    }
    return text.simplified().toStdString();
}

bool hasLine(std::string_view text, std::string_view start)
{
    const auto position = text.find(start);
    return position != std::string_view::npos && (position == 0 || text[position - 1] == '\n');
}

std::string messageOfExit(int code, const std::string &errorOutput)
{
    if (code == 126 || code == 127) {
        for (const auto &[sign, message] : refusals) {
            if (hasLine(errorOutput, sign))
                return translated(message);
        }
    }
    const auto text = oneLine(errorOutput);
    return text.empty() ? "the command ended with status " + std::to_string(code) : text;
}

std::string messageOf(const ChildProcessEnd &end)
{
    switch (end.kind) {
    case Kind::NotStarted:
        if (end.code == ENOENT)
            return translated(QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner",
                                                "pkexec, which asks for administrator rights, is not installed"));
        return "pkexec, which asks for administrator rights, could not be started: " +
               std::generic_category().message(end.code);
    case Kind::Signalled:
        return "the request for administrator rights was broken off (signal " + std::to_string(end.code) + ")";
    case Kind::Cancelled:
        return "the request for administrator rights was taken back";
    case Kind::Exited:
        break;
    }
    return messageOfExit(end.code, end.errorOutput);
}

/// The bus that carries the prompt takes valid text alone.
bool isAcceptable(const std::string &command)
{
    return command.size() < maximumArgument && command.find('\0') == std::string::npos &&
           QString::fromStdString(command).toStdString() == command;
}

/// pkexec refuses to run under a shell, a locale or a terminal type that it finds strange, so it is told of none.
std::vector<std::string> plainEnvironment()
{
    const char *path = std::getenv("PATH");
    return {std::string("PATH=") + (path != nullptr ? path : "/usr/bin:/bin"), "LC_ALL=C.UTF-8"};
}

} // namespace

PkexecPrivilegedRunner::PkexecPrivilegedRunner(std::string shell)
    : m_shell(std::move(shell)), m_cancellation(::eventfd(0, EFD_CLOEXEC))
{
}

std::string PkexecPrivilegedRunner::installedShell()
{
    constexpr const char *own = AMBERTIDE_ADMINISTRATOR_SHELL;
    return ::access(own, X_OK) == 0 ? own : "/bin/sh";
}

PrivilegedResult PkexecPrivilegedRunner::run(const std::string &command)
{
    if (!isAcceptable(command))
        return {Status::Rejected, {}};
    const auto end = runChildProcess({"pkexec", "--disable-internal-agent", m_shell, "-c", command}, plainEnvironment(),
                                     m_cancellation.get());
    if (end.kind == Kind::Exited && end.code == 0)
        return {};
    return {Status::Failed, messageOf(end)};
}

void PkexecPrivilegedRunner::cancel()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_cancellation.get(), &one, sizeof one);
}

} // namespace ambertide
