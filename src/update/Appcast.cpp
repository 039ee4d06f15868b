#include "update/Appcast.h"

#include <QStringDecoder>
#include <QXmlStreamReader>

#include <algorithm>
#include <utility>

namespace ambertide {

namespace {

// The parser compares each attribute with the others of its tag, and each tag with all namespaces around it: its time
// grows with the square of their number.
constexpr qsizetype mostTags = 20000;
constexpr qsizetype mostAttributes = 5000;

const auto appcastNamespace = QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");

/// What in the text would make the parser do far more work than the text's length justifies; empty if nothing would.
/// Characters are counted wherever they are, even in comments, so that none can hide from the count.
QString problemBeforeParsing(const QString &text)
{
    // The parser would read the whole declaration, entities included, before it could be refused.
    if (text.contains(QLatin1String("<!DOCTYPE")))
        return QStringLiteral("it declares a document type");
    if (text.count(u'<') > mostTags || text.count(u'=') > mostAttributes)
        return QStringLiteral("it holds too many tags or attributes");
    return {};
}

/// Reads a feed element by element. Unknown elements are skipped without recursion, so deep nesting takes no stack.
class AppcastReader
{
public:
    explicit AppcastReader(const QString &text) : m_xml(text) {}

    std::optional<Appcast> read(QString &problem)
    {
        if (!m_xml.readNextStartElement() || m_xml.name() != QLatin1String("rss"))
            m_xml.raiseError(QStringLiteral("it is no RSS feed"));
        while (m_xml.readNextStartElement()) {
            if (isPlain("channel"))
                readChannel();
            else
                m_xml.skipCurrentElement();
        }
        if (!m_xml.hasError())
            return std::move(m_appcast);
        problem = m_xml.errorString();
        return std::nullopt;
    }

private:
    void readChannel()
    {
        while (m_xml.readNextStartElement()) {
            if (isPlain("item"))
                readItem();
            else
                m_xml.skipCurrentElement();
        }
    }

    void readItem()
    {
        AppcastItem item;
        while (m_xml.readNextStartElement()) {
            if (isPlain("enclosure"))
                readEnclosure(item);
            else
                readChild(item);
        }
        if (item.version.isEmpty())
            return;
        if (item.displayVersion.isEmpty())
            item.displayVersion = item.version;
        m_appcast.items.push_back(std::move(item));
    }

    void readEnclosure(AppcastItem &item)
    {
        item.packageLink = QUrl(m_xml.attributes().value(QLatin1String("url")).toString(), QUrl::StrictMode);
        item.signature = attribute("edSignature");
        // An element of the item takes precedence over the enclosure's attribute, whichever comes first.
        const auto fill = [this](QString &field, const char *name) {
            if (field.isEmpty())
                field = attribute(name);
        };
        fill(item.version, "version");
        fill(item.displayVersion, "shortVersionString");
        fill(item.operatingSystem, "os");
        m_xml.skipCurrentElement();
    }

    void readChild(AppcastItem &item)
    {
        if (isPlain("description")) {
            item.releaseNotes.isPlainText = attribute("format") == QLatin1String("plain-text");
            item.releaseNotes.text = text();
        } else if (isAppcast("criticalUpdate")) {
            item.isCritical = true;
            item.criticalBelowVersion = attribute("version");
            m_xml.skipCurrentElement();
        } else if (isAppcast("releaseNotesLink")) {
            item.releaseNotesLink = QUrl(text(), QUrl::StrictMode);
        } else if (isAppcast("version")) {
            item.version = text();
        } else if (isAppcast("shortVersionString")) {
            item.displayVersion = text();
        } else if (isAppcast("os")) {
            item.operatingSystem = text();
        } else {
            m_xml.skipCurrentElement();
        }
    }

    bool isPlain(const char *name) const
    {
        return m_xml.namespaceUri().isEmpty() && m_xml.name() == QLatin1String(name);
    }
    bool isAppcast(const char *name) const
    {
        return m_xml.namespaceUri() == appcastNamespace && m_xml.name() == QLatin1String(name);
    }
    QString attribute(const char *name) const
    {
        return m_xml.attributes().value(appcastNamespace, QLatin1String(name)).toString();
    }
    QString text() { return m_xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed(); }

    QXmlStreamReader m_xml;
    Appcast m_appcast;
};

} // namespace

std::optional<Appcast> Appcast::read(const QByteArray &bytes, QString &problem)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes.first(std::min(bytes.size(), mostBytes)));
    if (bytes.size() > mostBytes)
        problem = QStringLiteral("it is larger than %1 bytes").arg(mostBytes);
    else if (decoder.hasError())
        problem = QStringLiteral("it is not encoded as UTF-8");
    else
        problem = problemBeforeParsing(text);
    return problem.isEmpty() ? AppcastReader(text).read(problem) : std::nullopt;
}

} // namespace ambertide
