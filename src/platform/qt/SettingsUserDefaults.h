#pragma once

#include "platform/UserDefaults.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <filesystem>
#include <map>
#include <mutex>
#include <string>

namespace ambertide {

/// The user defaults in an INI file that QSettings reads and atomically writes, at the next turn of the main thread's
/// event loop after a change.
///
/// A file that this class cannot have written (binary, not UTF-8, over 1 MiB, broken syntax, no regular file) is moved
/// to a free name beside it and reported, never overwritten; what could be read of it is kept. A file that cannot be
/// written is reported once and tried again at every read. A write waits for another program's for 300 ms at most.
/// Create and destroy on the main thread.
class SettingsUserDefaults final : public UserDefaults
{
public:
    /// `$XDG_CONFIG_HOME/ambertide/defaults.ini`, `~/.config` when unset.
    static QString standardPath();

    explicit SettingsUserDefaults(QString path = standardPath());
    /// Writes what is still waiting.
    ~SettingsUserDefaults() override;

    bool hasObject(std::string_view key) override;
    double doubleValue(std::string_view key) override;
    bool boolValue(std::string_view key) override;
    std::optional<std::string> data(std::string_view key) override;

    void setDouble(std::string_view key, double value) override { set(key, value); }
    void setInteger(std::string_view key, long long value) override { set(key, value); }
    void setBool(std::string_view key, bool value) override { set(key, value); }
    void setData(std::string_view key, std::string_view bytes) override;

private:
    using Values = std::map<QString, QVariant>;
    /// Damaged: text of which some can be read. Foreign: nothing of ours.
    enum class Health { good, damaged, foreign, unreadable };
    /// Tells one state of the file from the next.
    struct Stamp
    {
        std::filesystem::file_type type = std::filesystem::file_type::none;
        std::filesystem::file_time_type modified;
        std::uintmax_t size = 0;
        bool operator==(const Stamp &) const = default;
    };

    QVariant value(std::string_view key);
    void set(std::string_view key, const QVariant &value);
    void refresh();
    Stamp stamp() const;
    Health examine(const Stamp &file) const;
    void setAside();
    void scheduleWrite();
    void write();
    bool replaceFile(const Values &values) const;
    void report(std::string_view trouble);

    const QString m_path;
    QObject m_mainThread;
    std::mutex m_lock; ///< guards all below
    Values m_stored;   ///< as last read from the file
    Values m_unwritten;
    Stamp m_readStamp; ///< of the file as last read
    bool m_isWriteScheduled = false;
    Health m_health = Health::good;
    bool m_hasWriteFailed = false;
    bool m_isTroubleReported = false;
};

} // namespace ambertide
