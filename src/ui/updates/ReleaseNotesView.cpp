#include "ui/updates/ReleaseNotesView.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/TextStyle.h"
#include "ui/controls/Theme.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextDocument>

namespace ambertide {

namespace {

constexpr int leastHeight = 200; // logical pixels, with the usual font
constexpr double padding = 11;
constexpr double focusRingRadius = 7;

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
