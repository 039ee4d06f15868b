#include "update/Appcast.h"

#include "update/MarkupPrecheck.h"

#include <QStringDecoder>
#include <QXmlStreamReader>

namespace ambertide {

namespace {

constexpr int deepestElement = 32;
constexpr std::size_t mostItems = 4096;
constexpr int channelDepth = 2;
constexpr int itemDepth = 3;
constexpr int childDepth = 4; ///< an item's own elements
constexpr int grandchildDepth = 5;

const auto appcastNamespace = QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");

/// Reads a feed token by token. It never descends by a call, so that nesting costs no stack.
class AppcastReader
{
public:
    explicit AppcastReader(const QString &text) : m_xml(text) {}

    std::optional<Appcast> read(QString &problem)
    {
        while (!m_xml.atEnd()) {
            switch (m_xml.readNext()) {
            case QXmlStreamReader::DTD:
                m_xml.raiseError(QStringLiteral("it declares a document type"));
                break;
            case QXmlStreamReader::StartElement:
                startElement();
                break;
            case QXmlStreamReader::Characters:
                m_text += m_xml.text();
                break;
            case QXmlStreamReader::EndElement:
                endElement();
                break;
            default:
                break;
            }
        }
        if (!m_xml.hasError())
            return std::move(m_appcast);
        problem = m_xml.errorString();
        return std::nullopt;
    }

private:
    void startElement()
    {
        if (++m_depth > deepestElement)
            return m_xml.raiseError(QStringLiteral("its elements nest too deeply"));
        if (m_depth == 1 && m_xml.name() != QLatin1String("rss"))
            return m_xml.raiseError(QStringLiteral("it is no RSS feed"));
        forgetText();
        if (m_depth == channelDepth)
            m_isInChannel = isPlain("channel");
        else if (m_depth == itemDepth)
            startItem();
        else if (m_isInItem && m_depth == childDepth)
            startChild();
    }

    void startItem()
    {
        m_isInItem = m_isInChannel && isPlain("item");
        m_item = {};
    }

    void startChild()
    {
        m_isInInformational = isAppcast("informationalUpdate");
        if (m_isInInformational) {
            m_item.isInformational = true;
        } else if (isAppcast("criticalUpdate")) {
            m_item.isCritical = true;
            m_item.criticalBelowVersion = attribute("version");
        } else if (isPlain("description")) {
            m_item.isDescriptionPlainText = attribute("format") == QLatin1String("plain-text");
        } else if (isPlain("enclosure")) {
            readEnclosure();
        }
    }

    void readEnclosure()
    {
        const auto plain = m_xml.attributes();
        m_item.packageLink = QUrl(plain.value(QLatin1String("url")).toString(), QUrl::StrictMode);
        bool isNumber = false;
        const qint64 length = plain.value(QLatin1String("length")).toLongLong(&isNumber);
        m_item.packageLength = isNumber && length > 0 ? std::optional(length) : std::nullopt;
        m_item.signature = attribute("edSignature");
        // An item's own element counts before the attribute, whichever comes first.
        const auto fill = [this](QString &field, const char *name) {
            if (field.isEmpty())
                field = attribute(name);
        };
        fill(m_item.version, "version");
        fill(m_item.displayVersion, "shortVersionString");
        fill(m_item.operatingSystem, "os");
        fill(m_item.minimumSystemVersion, "minimumSystemVersion");
    }

    void endElement()
    {
        if (m_isInItem && m_depth == itemDepth)
            endItem();
        else if (m_isInItem && m_depth == childDepth)
            endChild();
        else if (m_isInInformational && m_depth == grandchildDepth)
            endInformationalChild();
        forgetText();
        --m_depth;
    }

    /// A child's text takes in that of the elements inside it: notes are sometimes written as bare XHTML.
    void forgetText()
    {
        if (m_depth <= childDepth || m_isInInformational)
            m_text.clear();
    }

    void endItem()
    {
        m_isInItem = false;
        if (m_item.version.isEmpty())
            return;
        if (m_appcast.items.size() == mostItems)
            return m_xml.raiseError(QStringLiteral("it holds too many items"));
        if (m_item.displayVersion.isEmpty())
            m_item.displayVersion = m_item.version;
        m_appcast.items.push_back(std::move(m_item));
    }

    void endChild()
    {
        m_isInInformational = false;
        const QString text = m_text.trimmed();
        if (isPlain("title"))
            m_item.title = text;
        else if (isPlain("link"))
            m_item.link = QUrl(text, QUrl::StrictMode);
        else if (isPlain("description"))
            m_item.description = text;
        else if (isAppcast("releaseNotesLink") && m_item.releaseNotesLink.isEmpty())
            m_item.releaseNotesLink = QUrl(text, QUrl::StrictMode);
        else if (isAppcast("channel"))
            m_item.channel = text;
        else if (text.isEmpty())
            return;
        else if (isAppcast("version"))
            m_item.version = text;
        else if (isAppcast("shortVersionString"))
            m_item.displayVersion = text;
        else if (isAppcast("os"))
            m_item.operatingSystem = text;
        else if (isAppcast("minimumSystemVersion"))
            m_item.minimumSystemVersion = text;
    }

    void endInformationalChild()
    {
        if (isAppcast("version"))
            m_item.informationalVersions.push_back(m_text.trimmed());
        else if (isAppcast("belowVersion"))
            m_item.informationalBelowVersion = m_text.trimmed();
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

    QXmlStreamReader m_xml;
    Appcast m_appcast;
    AppcastItem m_item;
    QString m_text;
    int m_depth = 0;
    bool m_isInChannel = false;
    bool m_isInItem = false;
    bool m_isInInformational = false;
};

} // namespace

std::optional<Appcast> Appcast::read(const QByteArray &bytes, QString &problem)
{
    if (bytes.size() > mostBytes) {
        problem = QStringLiteral("it is larger than %1 bytes").arg(mostBytes);
        return std::nullopt;
    }
    // One encoding only, so that the parser sees the same text as the check before it.
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    if (decoder.hasError()) {
        problem = QStringLiteral("it is not encoded as UTF-8");
        return std::nullopt;
    }
    if (const auto markupProblem = problemWithMarkup(bytes)) {
        problem = *markupProblem;
        return std::nullopt;
    }
    return AppcastReader(text).read(problem);
}

} // namespace ambertide
