#include "ui/updates/ReleaseNotesView.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/TextStyle.h"
#include "ui/controls/Theme.h"
#include "update/ForeignText.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextDocument>
#include <QTextDocumentFragment>

namespace ambertide {

namespace {

constexpr int leastHeight = 200; // logical pixels, with the usual font
constexpr double padding = 11;
constexpr double focusRingRadius = 7;

QRegularExpression pattern(const char *text)
{
    return QRegularExpression(QLatin1String(text), QRegularExpression::CaseInsensitiveOption |
                                                       QRegularExpression::DotMatchesEverythingOption);
}

/// Removes all tags but line breaks before the toolkit reads the HTML, since it takes quadratic time for nested
/// elements and gigabytes for a table that claims a thousand columns. Each pattern matches a tag up to its end or the
/// start of the next one, so that what is left cannot form a new tag.
QString plainTextOfHtml(QString html)
{
    static const auto hidden = pattern("<!--.*?(-->|\\z)|<(script|style|head|title)\\b.*?(</\\2\\b[^<>]*>?|\\z)");
    static const auto listItem = pattern("<li\\b[^<>]*>?");
    static const auto line = pattern("</?(p|h[1-6]|br|hr|div|ul|ol|pre|table|tr|blockquote)\\b[^<>]*>?");
    static const auto other = pattern("<(?!br>)[^<>]*>?");
    static const auto aroundLines = pattern("[ \\t]*\n[ \\t]*");
    static const auto emptyLines = pattern("\n{3,}");
    html.remove(hidden);
    html.replace(pattern("<(?![a-z/!?])"), QStringLiteral("&lt;"));
    html.replace(listItem, QStringLiteral("<br>\u2022 "));
    html.replace(line, QStringLiteral("<br>"));
    html.remove(other);
    QString text = QTextDocumentFragment::fromHtml(html).toPlainText();
    text.replace(aroundLines, QStringLiteral("\n"));
    text.replace(emptyLines, QStringLiteral("\n\n"));
    return text.trimmed();
}

} // namespace

ReleaseNotesView::ReleaseNotesView()
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(padding);
    setAccessibleName(tr("Release Notes"));
    setPlaceholderText(tr("There are no release notes."));
    follow();
}

void ReleaseNotesView::setNotes(const ReleaseNotes &notes)
{
    const QString text = notes.text.left(longestForeignText);
    setPlainText(displayableText(notes.isPlainText ? text : plainTextOfHtml(text)));
}

bool ReleaseNotesView::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::ApplicationFontChange)
        follow();
    return QPlainTextEdit::event(event);
}

void ReleaseNotesView::follow()
{
    setFont(textFont(TextStyle::Body));
    setMinimumHeight(qRound(leastHeight * textScale()));
    const auto theme = Theme::of(QApplication::palette());
    QPalette inks;
    inks.setColor(QPalette::Text, theme.text);
    inks.setColor(QPalette::PlaceholderText, theme.secondaryText);
    setPalette(inks);
    QPalette surface;
    surface.setColor(QPalette::Window, theme.card);
    verticalScrollBar()->setPalette(surface);
}

void ReleaseNotesView::paintEvent(QPaintEvent *event)
{
    QPlainTextEdit::paintEvent(event);
    if (!showsFocusRing(*this))
        return;
    QPainter painter(viewport());
    drawFocusRing(painter, viewport()->rect(), focusRingRadius, Theme::of(palette()).accent);
}

} // namespace ambertide
