#include "adapters/qt/SettingsUserDefaults.h"

#include "base/Console.h"

#include <QSettings>
#include <QStandardPaths>

#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

QString settingsKey(std::string_view key) { return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())); }

} // namespace

QString SettingsUserDefaults::standardPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/ambertide/defaults.ini");
}

SettingsUserDefaults::SettingsUserDefaults(QString path)
    : m_file(std::move(path)), m_writing(200ms, [this] { write(); })
{
    // QSettings makes its static data with its first object, and exit() destroys static data in the reverse order of
    // its making. Made this early, it lasts until the last flush().
    QSettings(QStringLiteral("/dev/null"), QSettings::IniFormat);
}

bool SettingsUserDefaults::hasObject(std::string_view key) { return value(key).isValid(); }

double SettingsUserDefaults::doubleValue(std::string_view key) { return value(key).toDouble(); }

bool SettingsUserDefaults::boolValue(std::string_view key)
{
    // QVariant::toBool() would take almost any other text for true.
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

std::optional<std::string> SettingsUserDefaults::unusableFile()
{
    const std::scoped_lock lock(m_lock);
    return m_isInTrouble ? std::optional(m_file.path().toStdString()) : std::nullopt;
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
    m_writing.request();
}

void SettingsUserDefaults::refresh()
{
    if (m_isWriting)
        return;
    if (std::exchange(m_hasWriteFailed, false))
        m_writing.request();
    const auto stamp = m_file.stamp();
    if (stamp == m_readStamp && m_health == SettingsFile::Health::Good)
        return;
    m_readStamp = stamp;
    auto content = m_file.read(stamp);
    m_health = content.health;
    if (m_health == SettingsFile::Health::Good) {
        m_stored = std::move(content.values);
        m_isInTrouble = m_isInTrouble && !m_unwritten.empty();
    } else if (m_health == SettingsFile::Health::Unreadable) {
        report("cannot be read");
    } else {
        keepBrokenFile(content);
    }
}

void SettingsUserDefaults::keepBrokenFile(const SettingsFile::Content &broken)
{
    const auto keptName = m_file.setAside();
    if (!keptName) {
        report("is broken and cannot be moved aside; nothing is saved");
        return;
    }
    console::print("The settings file " + m_file.path().toStdString() + " is broken; it was kept as " +
                   keptName->toStdString());
    m_stored.clear();
    // What can still be read was set by the user: it goes into the new file.
    for (const auto &[key, value] : broken.values)
        m_unwritten.try_emplace(key, value);
    m_writing.request();
    m_health = SettingsFile::Health::Good;
    m_readStamp = {};
}

void SettingsUserDefaults::write()
{
    std::unique_lock lock(m_lock);
    if (m_unwritten.empty())
        return;
    m_hasWriteFailed = false; // this is the next attempt: refresh() need not ask for one
    refresh();
    const auto written = m_unwritten;
    auto values = written;
    values.insert(m_stored.begin(), m_stored.end());
    const bool isWritable = m_health == SettingsFile::Health::Good;
    m_isWriting = true;
    lock.unlock();
    const bool isReplaced = isWritable && m_file.replace(values);
    lock.lock();
    m_isWriting = false;
    m_hasWriteFailed = !isReplaced;
    if (!isReplaced) {
        report("cannot be written; changes are kept until it can");
        return;
    }
    m_isInTrouble = false;
    std::erase_if(m_unwritten, [&written](const auto &entry) {
        const auto found = written.find(entry.first);
        return found != written.end() && found->second == entry.second;
    });
    m_stored = std::move(values);
    m_readStamp = {}; // another program's changes may have come in between
}

void SettingsUserDefaults::report(std::string_view trouble)
{
    if (!std::exchange(m_isInTrouble, true))
        console::print("The settings file " + m_file.path().toStdString() + ' ' + std::string(trouble));
}

} // namespace ambertide
