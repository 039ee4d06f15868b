#include "adapters/qt/PlistMainBundle.h"

#include <QFile>
#include <QXmlStreamReader>

namespace ambertide {

namespace {

constexpr qint64 largestFile = 262'144; // bytes

/// The string members of the outermost dictionary. Others are skipped.
std::map<std::string, std::string, std::less<>> readStrings(const std::filesystem::path &bundle)
{
    QFile file(QString::fromStdString((bundle / "Contents/Info.plist").string()));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    std::map<std::string, std::string, std::less<>> strings;
    QXmlStreamReader xml(file.read(largestFile));
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("plist") || !xml.readNextStartElement())
        return {};
    std::string key;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("key")) {
            key = xml.readElementText(QXmlStreamReader::SkipChildElements).toStdString();
        } else if (xml.name() == QLatin1String("string")) {
            strings.emplace(key, xml.readElementText(QXmlStreamReader::SkipChildElements).toStdString());
        } else {
            xml.skipCurrentElement();
        }
    }
    return xml.hasError() ? decltype(strings)() : strings;
}

} // namespace

PlistMainBundle::PlistMainBundle(const std::filesystem::path &program)
    : m_path(program.parent_path().parent_path().parent_path()), m_information(readStrings(m_path))
{
}

std::optional<std::string> PlistMainBundle::information(std::string_view key) const
{
    const auto found = m_information.find(key);
    return found == m_information.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> PlistMainBundle::presentInformation(std::string_view key) const
{
    const auto present = readStrings(m_path);
    const auto found = present.find(key);
    return found == present.end() ? std::nullopt : std::optional(found->second);
}

} // namespace ambertide
