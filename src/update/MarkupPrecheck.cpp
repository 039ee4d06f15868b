#include "update/MarkupPrecheck.h"

namespace ambertide {

namespace {

constexpr qsizetype longestTag = 16 * 1024;

/// The position behind the next `end`, or the end of the text.
qsizetype behind(QByteArrayView xml, qsizetype start, QByteArrayView end)
{
    const qsizetype found = xml.indexOf(end, start);
    return found < 0 ? xml.size() : found + end.size();
}

/// The position behind a tag that begins at `start`; a '>' within quotes does not end it.
qsizetype behindTag(QByteArrayView xml, qsizetype start)
{
    char quote = 0;
    for (qsizetype position = start; position < xml.size(); ++position) {
        const char each = xml.at(position);
        if (quote != 0)
            quote = each == quote ? '\0' : quote;
        else if (each == '\'' || each == '"')
            quote = each;
        else if (each == '>')
            return position + 1;
    }
    return xml.size();
}

} // namespace

std::optional<QString> problemWithMarkup(QByteArrayView xml)
{
    qsizetype position = xml.indexOf('<');
    while (position >= 0 && position < xml.size()) {
        const QByteArrayView rest = xml.sliced(position);
        qsizetype end = 0;
        if (rest.startsWith("<!--")) {
            end = behind(xml, position, "-->");
        } else if (rest.startsWith("<![CDATA[")) {
            end = behind(xml, position, "]]>");
        } else if (rest.startsWith("<?")) {
            end = behind(xml, position, "?>");
        } else if (rest.startsWith("<!")) {
            return QStringLiteral("it declares a document type");
        } else {
            end = behindTag(xml, position);
            if (end - position > longestTag)
                return QStringLiteral("one of its tags is too long");
        }
        position = xml.indexOf('<', end);
    }
    return std::nullopt;
}

} // namespace ambertide
