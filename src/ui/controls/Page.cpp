#include "ui/controls/Page.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollBar>

namespace ambertide {

namespace {

constexpr int marginOfFocus = 8;

} // namespace

QRect roomOnScreen(const QWidget &window)
{
    constexpr int panelsAndTitleBar = 96; // logical pixels
    auto room = window.screen()->availableGeometry();
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        room.setHeight(room.height() - panelsAndTitleBar);
    return room;
}

Page::Page(QWidget *content, QWidget *parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this, &Page::revealFocus);
}

// Destroying the content may move the focus, which must not call this object any more.
Page::~Page() { qApp->disconnect(this); }

int Page::idealHeight(int width) const
{
    const auto *layout = widget()->layout();
    const int height =
        layout->hasHeightForWidth() ? layout->totalHeightForWidth(width) : layout->totalSizeHint().height();
    return qMax(height, layout->totalMinimumSize().height());
}

QSize Page::minimumSizeHint() const
{
    const int width = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
    return {width, QScrollArea::minimumSizeHint().height()};
}

bool Page::eventFilter(QObject *watched, QEvent *event)
{
    const bool isNewLayout = watched == widget() && event->type() == QEvent::LayoutRequest;
    if (isNewLayout)
        chooseScrollBar();
    const bool isHandled = QScrollArea::eventFilter(watched, event);
    if (isNewLayout)
        Q_EMIT idealHeightChanged();
    return isHandled;
}

void Page::resizeEvent(QResizeEvent *event)
{
    chooseScrollBar();
    QScrollArea::resizeEvent(event);
}

/// By itself the base class keeps a bar that was once needed, because it measures wrapped texts beside the bar.
void Page::chooseScrollBar()
{
    const bool isTooWide = widget()->minimumSizeHint().width() > width();
    const int room = height() - (isTooWide ? horizontalScrollBar()->sizeHint().height() : 0);
    setVerticalScrollBarPolicy(room >= idealHeight(width()) ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
}

void Page::revealFocus(QWidget *, QWidget *focused)
{
    if (focused != nullptr && widget() != nullptr && widget()->isAncestorOf(focused))
        ensureWidgetVisible(focused, 0, marginOfFocus);
}

} // namespace ambertide
