#include "adapters/qt/SettingsFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStringDecoder>
#include <QTemporaryFile>

namespace ambertide {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t largestFile = 1'048'576; // bytes

bool isText(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return !decoder.hasError() && !bytes.contains('\0');
}

} // namespace

SettingsFile::Stamp SettingsFile::stamp() const
{
    const fs::path path = m_path.toStdString();
    std::error_code error;
    Stamp file = {.type = fs::status(path, error).type(), .modified = {}, .size = 0};
    if (file.type == fs::file_type::not_found)
        return file;
    file.modified = fs::last_write_time(path, error);
    if (file.type == fs::file_type::regular)
        file.size = fs::file_size(path, error);
    return file;
}

SettingsFile::Content SettingsFile::read(const Stamp &stamp) const
{
    if (stamp.type == fs::file_type::not_found) {
        const QFileInfo file(m_path);
        const QFileInfo folder(file.path());
        const bool isTargetAway = (folder.isSymLink() && !folder.exists()) ||
                                  (file.isSymLink() && !QFileInfo(QFileInfo(file.symLinkTarget()).path()).isWritable());
        return {isTargetAway ? Health::Unreadable : Health::Good, {}};
    }
    if (stamp.type == fs::file_type::none) // it cannot even be looked at
        return {Health::Unreadable, {}};
    if (stamp.type != fs::file_type::regular || stamp.size > largestFile)
        return {Health::Foreign, {}};
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return {Health::Unreadable, {}};
    const auto bytes = file.read(largestFile);
    if (!isText(bytes))
        return {Health::Foreign, {}};
    // QSettings caches what it has read by the file's name, and reads again only if size or time differ. It would miss
    // a change that keeps the length within one tick of the file system's clock, so it is given a copy, under a name
    // that it has never seen. When there is no room for a copy, the file itself has to do.
    QTemporaryFile copy;
    const bool isCopied = copy.open() && copy.write(bytes) == bytes.size() && copy.flush();
    const QSettings parsed(isCopied ? copy.fileName() : m_path, QSettings::IniFormat);
    Content content;
    const auto keys = parsed.allKeys();
    for (const auto &key : keys)
        content.values.emplace(key, parsed.value(key));
    if (parsed.status() == QSettings::FormatError)
        content.health = Health::Damaged;
    return content;
}

std::optional<QString> SettingsFile::setAside() const
{
    auto name = m_path + QStringLiteral(".broken");
    for (int number = 2; QFileInfo(name).isSymLink() || QFileInfo::exists(name); ++number)
        name = m_path + QStringLiteral(".broken-%1").arg(number);
    return QFile::rename(m_path, name) ? std::optional(name) : std::nullopt;
}

bool SettingsFile::replace(const Values &values) const
{
    // QSettings would wait for its own lock file without limit, so it is given a file in a folder that nobody else
    // writes to. That file then replaces the old one.
    const QFileInfo old(m_path);
    QDir().mkpath(old.path());
    const auto path = old.exists() ? old.canonicalFilePath() : old.isSymLink() ? old.symLinkTarget() : m_path;
    const auto folder = path + QStringLiteral(".new");
    const auto freshPath = folder + QStringLiteral("/defaults.ini");
    QFile::remove(folder); // if it is a link, only that, and not what it leads to
    QDir(folder).removeRecursively();
    if (!QDir().mkdir(folder))
        return false;
    {
        QSettings fresh(freshPath, QSettings::IniFormat);
        for (const auto &[key, value] : values)
            fresh.setValue(key, value);
        fresh.sync();
        if (fresh.status() != QSettings::NoError)
            return false;
    }
    std::error_code error;
    fs::rename(freshPath.toStdString(), path.toStdString(), error);
    QDir(folder).removeRecursively();
    return !error;
}

} // namespace ambertide
