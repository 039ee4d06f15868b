#include "adapters/linux/desktop/XdgLoginItem.h"

#include "adapters/linux/desktop/DesktopEntry.h"
#include "ports/MainBundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace ambertide {

namespace {

/// No entry that a person or a desktop wrote comes near it.
constexpr off_t maximumEntrySize = 64 * 1024;

QString autostartFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/autostart");
}

QString entryPath() { return autostartFolder() + QStringLiteral("/me.tovanu.Ambertide.desktop"); }

std::string reasonOf(int error) { return std::generic_category().message(error); }

bool isRunnable(const std::string &program)
{
    return !QStandardPaths::findExecutable(QFile::decodeName(program.c_str())).isEmpty();
}

/// Nothing when there is no regular file of a sensible size, or it cannot be read. Never waits, as opening a named pipe
/// otherwise would.
std::optional<std::string> readEntry(const QByteArray &path)
{
    const int descriptor = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        return {};
    QFile file;
    struct stat attributes = {};
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ||
        ::fstat(descriptor, &attributes) != 0 || !S_ISREG(attributes.st_mode) || attributes.st_size > maximumEntrySize)
        return {};
    return file.read(maximumEntrySize).toStdString();
}

bool isSwitchedOff(const DesktopEntry &entry)
{
    return entry.boolean("Hidden") == true || entry.boolean("X-GNOME-Autostart-enabled") == false ||
           entry.boolean("X-systemd-skip") == true;
}

} // namespace

XdgLoginItem::XdgLoginItem(const MainBundle &bundle) : m_bundle(bundle) {}

LoginItemStatus XdgLoginItem::status() const
{
    const QByteArray path = QFile::encodeName(entryPath());
    struct stat ignored = {};
    if (::lstat(path.constData(), &ignored) != 0)
        return LoginItemStatus::NotRegistered;
    const auto text = readEntry(path);
    const auto entry = text ? DesktopEntry::parse(*text) : std::nullopt;
    if (!entry)
        return LoginItemStatus::NotFound;
    if (isSwitchedOff(*entry))
        return LoginItemStatus::RequiresApproval;
    const auto program = entry->program();
    const auto required = entry->string("TryExec");
    if (!program || !isRunnable(*program) || (required && !isRunnable(*required)))
        return LoginItemStatus::NotFound;
    return LoginItemStatus::Enabled;
}

std::string XdgLoginItem::entryText() const
{
    const auto program = (m_bundle.path() / "Contents/MacOS/Ambertide").string();
    // As a program, systemd refuses one with a quote in its name and GLib one with a percent sign; as an argument,
    // neither.
    const bool isPlain = program.find_first_of("'\"%") == std::string::npos;
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Ambertide\n"
           "Comment=Tints every display to a colour temperature\n"
           "Icon=me.tovanu.Ambertide\n"
           "Terminal=false\n"
           "StartupNotify=false\n"
           "TryExec=" +
           DesktopEntry::escaped(program) + "\nExec=" + (isPlain ? "" : "/usr/bin/env ") +
           DesktopEntry::execArgument(program) + "\n";
}

std::optional<std::string> XdgLoginItem::registerItem()
{
    const auto folder = autostartFolder();
    const auto failure = [&](const std::string &reason) {
        return "The autostart entry in " + folder.toStdString() + " could not be written: " + reason;
    };
    const auto text = entryText();
    if (QString::fromStdString(text).toStdString() != text)
        return failure("the application's own path is not valid UTF-8");
    if (!QDir().mkpath(folder))
        return failure(reasonOf(errno));
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
