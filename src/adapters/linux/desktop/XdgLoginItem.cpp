#include "adapters/linux/desktop/XdgLoginItem.h"

#include "base/Release.h"
#include "ports/MainBundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <glib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace ambertide {

namespace {

constexpr char mainGroup[] = G_KEY_FILE_DESKTOP_GROUP;
/// Bytes; far more than any entry that a person or a desktop writes.
constexpr qint64 maximumEntrySize = qint64{64} * 1024;

using KeyFile = std::unique_ptr<GKeyFile, Release<&g_key_file_unref>>;
using Text = std::unique_ptr<char, Release<&g_free>>;
using Texts = std::unique_ptr<char *, Release<&g_strfreev>>;

QString autostartFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/autostart");
}

QString entryPath() { return autostartFolder() + QStringLiteral("/me.tovanu.Ambertide.desktop"); }

std::string reasonOf(int error) { return std::generic_category().message(error); }

bool isRunnable(const char *program) { return !QStandardPaths::findExecutable(QFile::decodeName(program)).isEmpty(); }

/// Null when there is no regular file of a sensible size, or it is not a desktop entry.
KeyFile readEntry(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || file.size() > maximumEntrySize || !file.open(QIODevice::ReadOnly))
        return {};
    const auto text = file.read(maximumEntrySize);
    KeyFile entry(g_key_file_new());
    if (text.contains('\0') || g_key_file_load_from_data(entry.get(), text.constData(), static_cast<gsize>(text.size()),
                                                         G_KEY_FILE_NONE, nullptr) == 0)
        return {};
    const Text firstGroup(g_key_file_get_start_group(entry.get()));
    return g_strcmp0(firstGroup.get(), mainGroup) == 0 ? std::move(entry) : nullptr;
}

bool isSwitchedOff(GKeyFile *entry)
{
    constexpr auto enabledKey = "X-GNOME-Autostart-enabled";
    const auto isTrue = [entry](const char *key) {
        return g_key_file_get_boolean(entry, mainGroup, key, nullptr) != 0;
    };
    return isTrue("Hidden") || isTrue("X-systemd-skip") ||
           (g_key_file_has_key(entry, mainGroup, enabledKey, nullptr) != 0 && !isTrue(enabledKey));
}

bool canStart(GKeyFile *entry)
{
    const Text commandLine(g_key_file_get_string(entry, mainGroup, "Exec", nullptr));
    char **arguments = nullptr;
    if (!commandLine || g_shell_parse_argv(commandLine.get(), nullptr, &arguments, nullptr) == 0)
        return false;
    const Texts owner(arguments);
    const auto program = QByteArray(arguments[0]).replace("%%", "%");
    const Text required(g_key_file_get_string(entry, mainGroup, "TryExec", nullptr));
    return isRunnable(program.constData()) && (!required || isRunnable(required.get()));
}

/// Quotes any text as one argument in the value of "Exec": Desktop Entry Specification 1.5, "The Exec key".
std::string execArgument(const std::string &text)
{
    std::string argument = "\"";
    for (const char character : text) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos)
            argument += '\\';
        argument.append(character == '%' ? 2 : 1, character);
    }
    return argument + '"';
}

/// The command line that starts the program, without `startArgument`.
std::string startCommand(const std::string &program)
{
    // systemd cannot start a program with a quote in its path, nor GLib one with a percent sign, but both pass such a
    // path on as an argument.
    const bool isPlain = program.find_first_of("'\"%") == std::string::npos;
    return (isPlain ? "" : "/usr/bin/env ") + execArgument(program);
}

/// The entry that starts this program.
std::string entryText(const std::string &program)
{
    const std::pair<const char *, std::string> values[] = {
        {"Type", "Application"},
        {"Name", "Ambertide"},
        {"Comment", QCoreApplication::translate("ambertide::XdgLoginItem", "Tint every display to a color temperature")
                        .toStdString()},
        {"Icon", "me.tovanu.Ambertide"},
        {"Terminal", "false"},
        {"StartupNotify", "false"},
        {"TryExec", program},
        {"Exec", startCommand(program) + ' ' + XdgLoginItem::startArgument},
    };
    const KeyFile entry(g_key_file_new());
    for (const auto &[key, value] : values)
        g_key_file_set_string(entry.get(), mainGroup, key, value.c_str());
    return Text(g_key_file_to_data(entry.get(), nullptr, nullptr)).get();
}

} // namespace

XdgLoginItem::XdgLoginItem(const MainBundle &bundle) : m_bundle(bundle) {}

std::string XdgLoginItem::program() const { return (m_bundle.path() / "Contents/MacOS/Ambertide").string(); }

void XdgLoginItem::bringUpToDate()
{
    if (status() != LoginItemStatus::Enabled)
        return;
    const auto entry = readEntry(entryPath());
    const Text command(entry ? g_key_file_get_string(entry.get(), mainGroup, "Exec", nullptr) : nullptr);
    if (command && command.get() == startCommand(program()))
        registerItem();
}

LoginItemStatus XdgLoginItem::status() const
{
    const QFileInfo file(entryPath());
    if (!file.exists() && !file.isSymbolicLink())
        return LoginItemStatus::NotRegistered;
    const auto entry = readEntry(file.filePath());
    if (!entry)
        return LoginItemStatus::NotFound;
    if (isSwitchedOff(entry.get()))
        return LoginItemStatus::RequiresApproval;
    return canStart(entry.get()) ? LoginItemStatus::Enabled : LoginItemStatus::NotFound;
}

std::optional<std::string> XdgLoginItem::registerItem()
{
    const auto folder = autostartFolder();
    const auto failure = [&](const std::string &reason) {
        return "The autostart entry in " + folder.toStdString() + " could not be written: " + reason;
    };
    if (g_utf8_validate(program().c_str(), -1, nullptr) == 0)
        return failure("the application's own path is not valid UTF-8");
    if (!QDir().mkpath(folder))
        return failure(reasonOf(errno));
    const auto text = entryText(program());
    QTemporaryFile file(folder + QStringLiteral("/.me.tovanu.Ambertide.XXXXXX"));
    if (!file.open() || file.write(text.data(), static_cast<qint64>(text.size())) < 0 || !file.flush() ||
        !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther) ||
        ::fsync(file.handle()) != 0)
        return failure(file.errorString().toStdString());
    if (std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(entryPath()).constData()) != 0)
        return failure(reasonOf(errno));
    file.setAutoRemove(false);
    return {};
}

std::optional<std::string> XdgLoginItem::unregisterItem()
{
    const auto path = entryPath();
    if (::unlink(QFile::encodeName(path).constData()) == 0)
        return {};
    if (errno == ENOENT || errno == ENOTDIR)
        return "Ambertide is not registered to start at login";
    return "The autostart entry " + path.toStdString() + " could not be removed: " + reasonOf(errno);
}

} // namespace ambertide
