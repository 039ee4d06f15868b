#include "adapters/linux/elevation/Pkexec.h"

#include <QCoreApplication>
#include <QString>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace ambertide {

namespace {

using Kind = ChildProcessEnd::Kind;

/// What pkexec writes before it ends with a status of its own, and what that means to a person. It translates none of
/// it.
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

QString translated(const char *message) { return QCoreApplication::translate("ambertide::PrivilegedRunner", message); }

/// One line of valid text without control characters.
QString oneLine(const std::string &output)
{
    QString text = QString::fromStdString(output);
    for (auto &character : text) {
        if (character.category() == QChar::Other_Control)
            character = u' ';
    }
    return text.simplified();
}

bool hasLine(std::string_view text, std::string_view start)
{
    const auto position = text.find(start);
    return position != std::string_view::npos && (position == 0 || text[position - 1] == '\n');
}

QString describeExit(const ChildProcessEnd &end)
{
    if (end.code == pkexecDismissed || end.code == pkexecNotAuthorised) {
        for (const auto &[sign, message] : refusals) {
            if (hasLine(end.output, sign))
                return translated(message);
        }
    }
    const QString text = oneLine(end.output);
    return text.isEmpty()
               ? translated(QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner", "the command ended with status %1"))
                     .arg(end.code)
               : text;
}

QString describe(const ChildProcessEnd &end)
{
    switch (end.kind) {
    case Kind::NotStarted:
        if (end.code == ENOENT)
            return translated(QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner",
                                                "pkexec, which asks for administrator rights, is not installed"));
        return translated(QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner",
                                            "pkexec, which asks for administrator rights, could not be started: %1"))
            .arg(QString::fromStdString(std::generic_category().message(end.code)));
    case Kind::Signalled:
        return translated(QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner", "the command was broken off (signal %1)"))
            .arg(end.code);
    case Kind::Cancelled:
        return translated(
            QT_TRANSLATE_NOOP("ambertide::PrivilegedRunner", "the request for administrator rights was taken back"));
    case Kind::Exited:
        break;
    }
    return describeExit(end);
}

} // namespace

ChildStart asAdministrator(const std::vector<std::string> &command)
{
    ChildStart start{.arguments = {"pkexec", "--disable-internal-agent"}};
    start.arguments.insert(start.arguments.end(), command.begin(), command.end());
    // pkexec refuses to run under a shell, a locale or a terminal type that it finds strange, so it is told of none.
    const char *path = std::getenv("PATH");
    start.environment =
        std::vector<std::string>{std::string("PATH=") + (path != nullptr ? path : "/usr/bin:/bin"), "LC_ALL=C.UTF-8"};
    return start;
}

std::string describeFailure(const ChildProcessEnd &end) { return describe(end).toStdString(); }

} // namespace ambertide
