#pragma once

#include <QString>
#include <QVariant>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>

namespace ambertide {

/// An INI file of settings, read and written as a whole. Holds no state; any thread.
class SettingsFile
{
public:
    using Values = std::map<QString, QVariant>;
    /// Damaged: text of which some can be read. Foreign: something that this class cannot have written, such as a
    /// binary file, one that is not UTF-8 or over 1 MiB, or not a regular file.
    enum class Health { Good, Damaged, Foreign, Unreadable };
    struct Content
    {
        Health health = Health::Good;
        Values values; ///< also of a damaged file, as far as it can be read
    };
    /// Tells one state of the file from the next.
    struct Stamp
    {
        std::filesystem::file_type type = std::filesystem::file_type::none;
        std::filesystem::file_time_type modified;
        std::uintmax_t size = 0;
        bool operator==(const Stamp &) const = default;
    };

    explicit SettingsFile(QString path) : m_path(std::move(path)) {}

    const QString &path() const { return m_path; }
    Stamp stamp() const;
    /// A file that does not exist is good and empty.
    Content read(const Stamp &stamp) const;
    /// Renames the file to a free name beside it, and returns that name; nothing when that fails.
    std::optional<QString> setAside() const;
    /// Replaces the content atomically, and makes the folder if it is missing. A link to the settings stays a link.
    /// False when that fails.
    bool replace(const Values &values) const;

private:
    QString m_path;
};

} // namespace ambertide
