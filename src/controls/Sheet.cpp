#include "controls/Sheet.h"

#include "controls/Drawing.h"
#include "controls/Theme.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace ambertide {

namespace {

constexpr double cornerRadius = 12;
constexpr int margin = 12; // to the host's edges
constexpr QColor backdrop(0, 0, 0, 96);

QAccessibleInterface *accessibleSheet(const QString &className, QObject *object)
{
    auto *sheet = className == QLatin1String("ambertide::Sheet") ? qobject_cast<QWidget *>(object) : nullptr;
    return sheet != nullptr ? new QAccessibleWidget(sheet, QAccessible::Dialog) : nullptr;
}

} // namespace

Sheet::Sheet(QWidget &host, QWidget *content, const QSize &size, const QString &accessibleName)
    : QWidget(&host), m_surface(content), m_formerFocus(host.window()->focusWidget())
{
    static const bool isFactoryInstalled = (QAccessible::installFactory(accessibleSheet), true);
    Q_UNUSED(isFactoryInstalled)
    setAccessibleName(accessibleName);
    m_surface->setParent(this);
    m_surface->setMinimumSize(size.expandedTo(m_surface->minimumSizeHint()));
    m_surface->resize(m_surface->minimumSize());
    host.installEventFilter(this);
    cover();
    raise();
    show();
    m_surface->setFocus(Qt::OtherFocusReason);
    if (!m_surface->hasFocus())
        focusNextPrevChild(true);
}

void Sheet::dismiss()
{
    hide();
    if (m_formerFocus)
        m_formerFocus->setFocus(Qt::OtherFocusReason);
    deleteLater();
}

QSize Sheet::neededSize() const { return m_surface->minimumSize() + QSize(2 * margin, 2 * margin); }

void Sheet::cover()
{
    setGeometry(parentWidget()->rect());
    m_surface->move((width() - m_surface->width()) / 2, (height() - m_surface->height()) / 2);
}

bool Sheet::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
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

void Sheet::mousePressEvent(QMouseEvent *event) { event->accept(); }

void Sheet::wheelEvent(QWheelEvent *event) { event->accept(); }

void Sheet::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    painter.fillRect(rect(), backdrop);
    const QRectF shape = m_surface->geometry();
    fillRounded(painter, shape, cornerRadius, theme.panel);
    strokeRounded(painter, shape, cornerRadius, theme.hairline);
}

} // namespace ambertide
