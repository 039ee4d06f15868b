#include "adapters/qt/SettingsUserDefaults.h"

#include "base/Console.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QStandardPaths>
#include <QStringDecoder>

#include <utility>

namespace ambertide {

namespace {

constexpr qint64 largestFile = 1'048'576; // bytes
constexpr int longestWait = 300;          // ms, for another program that writes
constexpr int millisecondsToStale = 500;
/// How long changes are gathered for one write.
constexpr std::chrono::milliseconds gatheringTime{200};
constexpr char cannotBeWritten[] = "cannot be written; changes are kept until it can";

QString settingsKey(std::string_view key) { return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())); }

std::map<QString, QVariant> readAll(const QString &path)
{
    const QSettings file(path, QSettings::IniFormat);
    std::map<QString, QVariant> values;
    const auto keys = file.allKeys();
    for (const auto &key : keys)
        values.emplace(key, file.value(key));
    return values;
}

} // namespace

QString SettingsUserDefaults::standardPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/ambertide/defaults.ini");
}

SettingsUserDefaults::SettingsUserDefaults(QString path)
    : m_path(std::move(path)), m_writer([this](const std::stop_token &stop) { writeUntilStopped(stop); })
{
}

void SettingsUserDefaults::flush(std::chrono::milliseconds limit)
{
    // By looking again and again, since a lock might be held by a thread that waits for a disk. It is the last thing
    // that a process does.
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (m_isWriteScheduled && std::chrono::steady_clock::now() < deadline) {
        m_isUrgent = true;
        m_wakeWriter.notify_all();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

bool SettingsUserDefaults::hasObject(std::string_view key) { return value(key).isValid(); }

double SettingsUserDefaults::doubleValue(std::string_view key) { return value(key).toDouble(); }

bool SettingsUserDefaults::boolValue(std::string_view key)
{
    // QVariant would take any other text for true.
    const auto text = value(key).toString();
    return text == QLatin1String("true") || text == QLatin1String("1");
}

std::optional<std::string> SettingsUserDefaults::data(std::string_view key)
{
    const auto found = value(key);
    return found.isValid() ? std::optional(found.toByteArray().toStdString()) : std::nullopt;
}

void SettingsUserDefaults::setData(std::string_view key, std::string_view bytes)
{
    set(key, QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

QVariant SettingsUserDefaults::value(std::string_view key)
{
    const auto name = settingsKey(key);
    const std::scoped_lock lock(m_lock);
    refresh();
    return present(name);
}

QVariant SettingsUserDefaults::present(const QString &name) const
{
    for (const auto *values : {&m_unwritten, &m_stored}) {
        if (const auto found = values->find(name); found != values->end())
            return found->second;
    }
    return {};
}

void SettingsUserDefaults::set(std::string_view key, const QVariant &value)
{
    const auto name = settingsKey(key);
    const std::scoped_lock lock(m_lock);
    refresh();
    // Numbers and truth values come back from the file as text.
    if (const auto old = present(name); old.isValid() && old.toByteArray() == value.toByteArray())
        return;
    m_unwritten.insert_or_assign(name, value);
    scheduleWrite();
}

void SettingsUserDefaults::scheduleWrite()
{
    m_isWriteScheduled = true;
    m_wakeWriter.notify_all();
}

void SettingsUserDefaults::writeUntilStopped(const std::stop_token &stop)
{
    std::unique_lock lock(m_lock);
    for (bool isLast = false; !isLast;) {
        m_wakeWriter.wait(lock, stop, [this] { return m_isWriteScheduled.load(); });
        m_wakeWriter.wait_for(lock, stop, gatheringTime, [this] { return m_isUrgent.load(); });
        isLast = stop.stop_requested();
        m_isUrgent = false;
        m_hasWriteFailed = false;
        m_hasWriteFailed = !write(lock);
        // Changes since the write began want another one; what has failed waits for the next read.
        m_isWriteScheduled = !m_hasWriteFailed && !m_unwritten.empty();
    }
}

void SettingsUserDefaults::refresh()
{
    if (m_isWriting)
        return;
    if (m_hasWriteFailed)
        scheduleWrite();
    const auto file = stamp();
    if (file == m_readStamp && m_health == Health::good)
        return;
    m_readStamp = file;
    m_health = examine(file);
    if (m_health == Health::good)
        m_stored = readAll(m_path);
    else if (m_health == Health::unreadable)
        report("cannot be read");
    else
        setAside();
}

SettingsUserDefaults::Stamp SettingsUserDefaults::stamp() const
{
    const std::filesystem::path path = m_path.toStdString();
    std::error_code error;
    Stamp file = {.type = std::filesystem::status(path, error).type(), .modified = {}, .size = 0};
    if (file.type == std::filesystem::file_type::not_found)
        return file;
    file.modified = std::filesystem::last_write_time(path, error);
    if (file.type == std::filesystem::file_type::regular)
        file.size = std::filesystem::file_size(path, error);
    return file;
}

SettingsUserDefaults::Health SettingsUserDefaults::examine(const Stamp &file) const
{
    if (file.type == std::filesystem::file_type::not_found)
        return Health::good;
    if (file.type != std::filesystem::file_type::regular || file.size > largestFile)
        return Health::foreign;
    QFile content(m_path);
    if (!content.open(QIODevice::ReadOnly))
        return Health::unreadable;
    const auto bytes = content.read(largestFile);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    if (decoder.hasError() || bytes.contains('\0'))
        return Health::foreign;
    const QSettings parsed(m_path, QSettings::IniFormat);
    parsed.allKeys(); // sections are parsed when first needed
    return parsed.status() == QSettings::FormatError ? Health::damaged : Health::good;
}

void SettingsUserDefaults::setAside()
{
    auto keptName = m_path + QStringLiteral(".broken");
    for (int number = 2; QFileInfo(keptName).isSymLink() || QFileInfo::exists(keptName); ++number)
        keptName = m_path + QStringLiteral(".broken-%1").arg(number);
    if (!QFile::rename(m_path, keptName)) {
        report("is broken and cannot be moved aside; nothing is saved");
        return;
    }
    console::print("The settings file " + m_path.toStdString() + " is broken; it was kept as " +
                   keptName.toStdString());
    m_stored.clear();
    if (m_health == Health::damaged) {
        // What can still be read was set by the user: it goes into the new file.
        for (auto &[key, value] : readAll(keptName))
            m_unwritten.try_emplace(key, value);
        scheduleWrite();
    }
    m_health = Health::good;
    m_readStamp = {};
}

/// Gives the lock up while it waits for the disk.
bool SettingsUserDefaults::write(std::unique_lock<std::mutex> &lock)
{
    if (m_unwritten.empty())
        return true;
    lock.unlock();
    QDir().mkpath(QFileInfo(m_path).path());
    // Keeps two writers from losing each other's changes. A program that was killed may have left the lock: it is
    // waited for a moment, no more, and does not count once it is old.
    QLockFile fileLock(m_path + QStringLiteral(".lock"));
    fileLock.setStaleLockTime(millisecondsToStale);
    const bool isFileLocked = fileLock.tryLock(longestWait);
    lock.lock();
    if (!isFileLocked) {
        if (fileLock.error() != QLockFile::LockFailedError)
            report(cannotBeWritten);
        return false;
    }
    refresh();
    const auto written = m_unwritten;
    auto values = written;
    values.insert(m_stored.begin(), m_stored.end());
    const bool isWritable = m_health == Health::good;
    m_isWriting = true;
    lock.unlock();
    const bool isReplaced = isWritable && replaceFile(values);
    lock.lock();
    m_isWriting = false;
    if (!isReplaced) {
        report(cannotBeWritten);
        return false;
    }
    m_isTroubleReported = false;
    std::erase_if(m_unwritten, [&](const auto &entry) {
        const auto found = written.find(entry.first);
        return found != written.end() && found->second == entry.second;
    });
    m_stored = std::move(values);
    m_readStamp = {}; // another program's changes may have come in between
    return true;
}

bool SettingsUserDefaults::replaceFile(const Values &values) const
{
    // QSettings would wait for a lock of its own without limit, so it gets a file that nobody else writes, which then
    // takes the place of the other. A link to the settings stays a link.
    const QFileInfo old(m_path);
    const auto path = old.exists() ? old.canonicalFilePath() : m_path;
    const auto freshPath = path + QStringLiteral(".new");
    QFile::remove(freshPath);
    QFile::remove(freshPath + QStringLiteral(".lock"));
    {
        QSettings fresh(freshPath, QSettings::IniFormat);
        for (const auto &[key, value] : values)
            fresh.setValue(key, value);
        fresh.sync();
        if (fresh.status() != QSettings::NoError)
            return false;
    }
    std::error_code error;
    std::filesystem::rename(freshPath.toStdString(), path.toStdString(), error);
    return !error;
}

void SettingsUserDefaults::report(std::string_view trouble)
{
    if (!std::exchange(m_isTroubleReported, true))
        console::print("The settings file " + m_path.toStdString() + ' ' + std::string(trouble));
}

} // namespace ambertide
