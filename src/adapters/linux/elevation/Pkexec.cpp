#include "adapters/linux/elevation/Pkexec.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <cerrno>
#include <string_view>

namespace ambertide {

namespace {

bool hasLine(std::string_view text, std::string_view start)
{
    const auto position = text.find(start);
    return position != std::string_view::npos && (position == 0 || text[position - 1] == '\n');
}

class Texts
{
    Q_DECLARE_TR_FUNCTIONS(ambertide::PrivilegedRunner)

public:
    static QString describe(const ChildProcessEnd &end)
    {
        switch (end.kind) {
        case ChildProcessEnd::Kind::NotStarted:
            if (end.code == ENOENT)
                return tr("pkexec, which asks for administrator rights, is not installed");
            return tr("pkexec, which asks for administrator rights, could not be started");
        case ChildProcessEnd::Kind::Signalled:
            return tr("the command was broken off (signal %1)").arg(end.code);
        case ChildProcessEnd::Kind::Cancelled:
            return tr("the request for administrator rights was taken back");
        case ChildProcessEnd::Kind::Exited:
            break;
        }
        const QString refusal = describeRefusal(end.output);
        return refusal.isEmpty() ? tr("the command ended with status %1").arg(end.code) : refusal;
    }

private:
    /// Translates what pkexec itself writes before it fails, which is always English. Empty for any other output.
    static QString describeRefusal(const std::string &output)
    {
        if (hasLine(output, "Error executing command as another user: Request dismissed"))
            return tr("the request for administrator rights was cancelled");
        if (hasLine(output, "Error executing command as another user: Not authorized"))
            return tr("administrator rights were not granted");
        if (hasLine(output, "Error executing command as another user: No authentication agent found"))
            return tr("nothing in this session can ask for an administrator's password (no polkit authentication agent "
                      "is running)");
        if (hasLine(output, "Error getting authority: "))
            return tr("the service that grants administrator rights (polkit) cannot be reached");
        if (hasLine(output, "Error checking for authorization "))
            return tr("the service that grants administrator rights (polkit) gave no answer");
        if (hasLine(output, "pkexec must be setuid root"))
            return tr("pkexec, which asks for administrator rights, is not set up to do so on this system");
        return {};
    }
};

} // namespace

ChildStart asAdministrator(const std::string &pkexec, const std::vector<std::string> &command)
{
    ChildStart start{.arguments = {pkexec, "--disable-internal-agent"}};
    start.arguments.insert(start.arguments.end(), command.begin(), command.end());
    // pkexec refuses to run when it finds the user's shell, locale or terminal type suspicious, so it is given none of
    // them.
    start.environment = std::vector<std::string>{"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8"};
    return start;
}

QString describeFailure(const ChildProcessEnd &end) { return Texts::describe(end); }

std::string oneLine(const std::string &output)
{
    QString text = QString::fromStdString(output);
    text.replace(QRegularExpression(QStringLiteral("\\p{Cc}")), QStringLiteral(" "));
    return text.simplified().toStdString();
}

} // namespace ambertide
