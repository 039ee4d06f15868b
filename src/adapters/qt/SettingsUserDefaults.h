#pragma once

#include "ports/UserDefaults.h"

#include <QString>
#include <QVariant>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace ambertide {

/// The user defaults in an INI file that QSettings reads and atomically writes. A thread of its own writes, 200 ms
/// after the first change and together with what has changed since; a value that is the present one is no change.
/// Nothing waits for a write under way.
///
/// A file that this class cannot have written (binary, not UTF-8, over 1 MiB, broken syntax, no regular file) is moved
/// to a free name beside it and reported, never overwritten; what could be read of it is kept. A file that cannot be
/// written is reported once and tried again after every read. A write waits for another program's for 300 ms at most.
class SettingsUserDefaults final : public UserDefaults
{
public:
    /// `$XDG_CONFIG_HOME/ambertide/defaults.ini`, `~/.config` when unset.
    static QString standardPath();

    explicit SettingsUserDefaults(QString path = standardPath());
    /// Writes what is still waiting.
    ~SettingsUserDefaults() override = default;

    bool hasObject(std::string_view key) override;
    double doubleValue(std::string_view key) override;
    bool boolValue(std::string_view key) override;
    std::optional<std::string> data(std::string_view key) override;

    void setDouble(std::string_view key, double value) override { set(key, value); }
    void setInteger(std::string_view key, long long value) override { set(key, value); }
    void setBool(std::string_view key, bool value) override { set(key, value); }
    void setData(std::string_view key, std::string_view bytes) override;
    /// Takes no lock.
    void flush(std::chrono::milliseconds limit) override;

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
    QVariant present(const QString &name) const;
    void scheduleWrite();
    void writeUntilStopped(const std::stop_token &stop);
    bool write(std::unique_lock<std::mutex> &lock);
    bool replaceFile(const Values &values) const;
    void report(std::string_view trouble);

    const QString m_path;
    std::mutex m_lock; ///< guards all below; never held while the file is written
    Values m_stored;   ///< as last read from the file
    Values m_unwritten;
    Stamp m_readStamp; ///< of the file as last read
    Health m_health = Health::good;
    bool m_isWriting = false; ///< the file is the writer's alone
    bool m_hasWriteFailed = false;
    bool m_isTroubleReported = false;
    std::atomic<bool> m_isWriteScheduled = false; ///< until the write has ended; changed under the lock
    std::atomic<bool> m_isUrgent = false;
    std::condition_variable_any m_wakeWriter;
    std::jthread m_writer; ///< last, so that it ends before what it uses
};

} // namespace ambertide
