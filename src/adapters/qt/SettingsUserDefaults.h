#pragma once

#include "adapters/qt/GatheredWork.h"
#include "adapters/qt/SettingsFile.h"
#include "ports/UserDefaults.h"

namespace ambertide {

/// The user defaults in a settings file, cached in memory while the file stays the same. A thread of its own writes,
/// 200 ms after the first change, everything that has changed by then; setting the present value is no change. No
/// reader or writer of a value waits for the disk while that thread writes.
///
/// A file that this class cannot have written is moved to a free name beside it and reported, never overwritten; what
/// could be read of it is kept. A file that cannot be written is reported once, and writing is tried again after every
/// read. If two programs write at the same moment, one of them wins.
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
    /// Takes no lock that is held during a write.
    void flush(std::chrono::milliseconds limit) override { m_writing.finish(limit); }
    std::optional<std::string> unusableFile() override;

private:
    QVariant value(std::string_view key);
    void set(std::string_view key, const QVariant &value);
    QVariant present(const QString &name) const;
    void refresh();
    void keepBrokenFile(const SettingsFile::Content &broken);
    void write();
    void report(std::string_view trouble);

    const SettingsFile m_file;
    std::mutex m_lock;             ///< guards all below; never held while the file is written
    SettingsFile::Values m_stored; ///< as last read from the file
    SettingsFile::Values m_unwritten;
    SettingsFile::Stamp m_readStamp; ///< of the file as last read
    SettingsFile::Health m_health = SettingsFile::Health::Good;
    bool m_isWriting = false; ///< only the writing thread may touch the file
    bool m_hasWriteFailed = false;
    bool m_isInTrouble = false;
    GatheredWork m_writing; ///< last, so that it ends before what it uses
};

} // namespace ambertide
