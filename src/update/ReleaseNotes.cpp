#include "update/ReleaseNotes.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <utility>

namespace ambertide {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longestEntity = 10;

template <std::size_t Count>
bool isOneOf(QStringView name, const std::array<QLatin1String, Count> &names)
{
    return std::ranges::any_of(names,
                               [name](QLatin1String each) { return name.compare(each, Qt::CaseInsensitive) == 0; });
}

bool isParagraph(QStringView name)
{
    static constexpr std::array names{QLatin1String("p"),  QLatin1String("h1"), QLatin1String("h2"),
                                      QLatin1String("h3"), QLatin1String("h4"), QLatin1String("h5"),
                                      QLatin1String("h6"), QLatin1String("pre")};
    return isOneOf(name, names);
}

bool isLine(QStringView name)
{
    static constexpr std::array names{QLatin1String("br"), QLatin1String("li"), QLatin1String("ul"),
                                      QLatin1String("ol"), QLatin1String("tr"), QLatin1String("div"),
                                      QLatin1String("hr")};
    return isOneOf(name, names);
}

bool isHidden(QStringView name)
{
    static constexpr std::array names{QLatin1String("script"), QLatin1String("style"), QLatin1String("head"),
                                      QLatin1String("title"), QLatin1String("template")};
    return isOneOf(name, names);
}

QString entity(QStringView name)
{
    static constexpr std::array<std::pair<QLatin1String, char16_t>, 12> known{{
        {QLatin1String("amp"), u'&'},
        {QLatin1String("lt"), u'<'},
        {QLatin1String("gt"), u'>'},
        {QLatin1String("quot"), u'"'},
        {QLatin1String("apos"), u'\''},
        {QLatin1String("nbsp"), u' '},
        {QLatin1String("ndash"), u'\u2013'},
        {QLatin1String("mdash"), u'\u2014'},
        {QLatin1String("hellip"), u'\u2026'},
        {QLatin1String("rsquo"), u'\u2019'},
        {QLatin1String("ldquo"), u'\u201c'},
        {QLatin1String("rdquo"), u'\u201d'},
    }};
    if (name.startsWith(u'#')) {
        const bool isHexadecimal = name.size() > 1 && name.at(1).toLower() == u'x';
        bool isNumber = false;
        const uint code = name.mid(isHexadecimal ? 2 : 1).toUInt(&isNumber, isHexadecimal ? 16 : 10);
        const bool isCharacter = isNumber && code <= 0x10ffff && !(code >= 0xd800 && code <= 0xdfff);
        return isCharacter ? QString::fromUcs4(std::array{char32_t{code}}.data(), 1) : QString();
    }
    const auto found = std::ranges::find_if(known, [name](const auto &each) { return name == each.first; });
    return found != known.end() ? QString(QChar(found->second)) : QString();
}

/// One pass over the HTML, from tag to tag.
class HtmlText
{
public:
    explicit HtmlText(QStringView html) : m_rest(html) {}

    QString read()
    {
        while (!m_rest.isEmpty()) {
            const QChar next = m_rest.front();
            if (next == u'<')
                readTag();
            else if (next == u'&')
                readEntity();
            else
                readCharacter(next);
        }
        return std::move(m_text).trimmed();
    }

private:
    void readCharacter(QChar character)
    {
        m_rest = m_rest.mid(1);
        if (!character.isSpace())
            m_text += character;
        else if (!m_text.isEmpty() && !m_text.back().isSpace())
            m_text += u' ';
    }

    void readEntity()
    {
        const qsizetype end = m_rest.left(longestEntity).indexOf(u';');
        const QString meant = end > 0 ? entity(m_rest.mid(1, end - 1)) : QString();
        if (meant.isEmpty())
            return readCharacter(u'&');
        m_text += meant;
        m_rest = m_rest.mid(end + 1);
    }

    void readTag()
    {
        if (m_rest.startsWith("<!--"_L1))
            return skipPast("-->"_L1);
        const auto tag = m_rest.mid(1);
        const bool isClosing = tag.startsWith(u'/');
        const auto name = nameAtStartOf(tag.mid(isClosing ? 1 : 0));
        if (name.isEmpty() && !isClosing && !tag.startsWith(u'!') && !tag.startsWith(u'?'))
            return readCharacter(u'<');
        if (isHidden(name) && !isClosing)
            skipPast(u"</"_s + name.toString());
        skipPast(">"_L1);
        if (isParagraph(name))
            endLine(2);
        else if (isLine(name))
            endLine(1);
        if (!isClosing && name.compare("li"_L1, Qt::CaseInsensitive) == 0)
            m_text += u"\u2022 "_s;
    }

    /// Ends the line, so that the text ends with that many line ends.
    void endLine(qsizetype lineEnds)
    {
        qsizetype end = m_text.size();
        while (end > 0 && m_text.at(end - 1).isSpace())
            --end;
        const qsizetype present = m_text.mid(end).count(u'\n');
        m_text.truncate(end);
        if (end > 0)
            m_text += QString(std::max(lineEnds, present), u'\n');
    }

    QStringView nameAtStartOf(QStringView tag)
    {
        const auto end = std::ranges::find_if_not(tag, [](QChar each) { return each.isLetterOrNumber(); });
        return tag.left(end - tag.begin());
    }

    template <typename Text>
    void skipPast(const Text &text)
    {
        const qsizetype found = m_rest.indexOf(text, 0, Qt::CaseInsensitive);
        m_rest = found < 0 ? QStringView() : m_rest.mid(found + text.size());
    }

    QStringView m_rest;
    QString m_text;
};

} // namespace

QString plainTextOfHtml(const QString &html) { return HtmlText(QStringView(html).left(longestReleaseNotes)).read(); }

QString displayableText(QString text)
{
    text.truncate(longestReleaseNotes);
    text.removeIf([](QChar each) {
        const bool turnsDirection =
            (each >= u'\u202a' && each <= u'\u202e') || (each >= u'\u2066' && each <= u'\u2069');
        return turnsDirection || (each.category() == QChar::Other_Control && each != u'\n' && each != u'\t');
    });
    return text;
}

} // namespace ambertide
