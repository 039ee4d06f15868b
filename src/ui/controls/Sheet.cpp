#include "ui/controls/Sheet.h"

#include "ui/controls/AccessibleApplication.h"
#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

#include <utility>

namespace ambertide {

namespace {

constexpr double cornerRadius = 12;
constexpr int margin = 12; // at least, from the host's edges
constexpr QColor backdrop(0, 0, 0, 96);

} // namespace

Sheet::Sheet(QWidget &host, QWidget *content, const QSize &size, const QString &accessibleName)
    : QWidget(&host), m_smallest(size), m_surface(content, this), m_formerFocus(host.window()->focusWidget())
{
    setAccessibleRole(*this, QAccessible::Dialog);
    setAccessibleName(accessibleName);
    setAttribute(Qt::WA_NoMousePropagation);
    host.installEventFilter(this);
    connect(&m_surface, &Page::idealHeightChanged, this, &Sheet::cover);
    cover();
    raise();
    show();
    focusNextPrevChild(true);
}

void Sheet::dismiss()
{
    hide();
    if (m_formerFocus)
        m_formerFocus->setFocus(Qt::OtherFocusReason);
    QCoreApplication::postEvent(parentWidget(), new QEvent(QEvent::LayoutRequest));
    deleteLater();
}

QSize Sheet::surfaceSize() const
{
    const int width = qMax(m_smallest.width(), m_surface.minimumSizeHint().width());
    return {width, qMax(m_smallest.height(), m_surface.idealHeight(width))};
}

QSize Sheet::neededSize() const { return surfaceSize() + QSize(2 * margin, 2 * margin); }

void Sheet::cover()
{
    setGeometry(parentWidget()->rect());
    const QSize size = surfaceSize().boundedTo(this->size() - QSize(2 * margin, 2 * margin));
    const QRect former = m_surface.geometry();
    m_surface.setGeometry(QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, size, rect()));
    if (m_surface.geometry() != former)
        update();
    if (neededSize() != std::exchange(m_askedFor, neededSize()))
        QCoreApplication::postEvent(parentWidget(), new QEvent(QEvent::LayoutRequest));
}

bool Sheet::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        cover();
    return QWidget::eventFilter(watched, event);
}

bool Sheet::focusNextPrevChild(bool next)
{
    auto *from = QApplication::focusWidget();
    if (from == nullptr || !isAncestorOf(from))
        from = this;
    auto *widget = from;
    do {
        widget = next ? widget->nextInFocusChain() : widget->previousInFocusChain();
        if (isAncestorOf(widget) && widget->isVisible() && widget->isEnabled() && widget->focusProxy() == nullptr &&
            (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (widget != from);
    return false;
}

void Sheet::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT cancelled();
    event->accept();
}

void Sheet::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    painter.fillRect(rect(), backdrop);
    const QRectF shape = m_surface.geometry();
    drawShadow(painter, shape, cornerRadius, theme.isDark);
    fillRounded(painter, shape, cornerRadius, theme.panel);
    strokeRounded(painter, shape, cornerRadius, theme.hairline);
}

} // namespace ambertide
