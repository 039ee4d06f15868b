#include "ui/controls/AccessibleApplication.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QWidget>

namespace ambertide {

namespace {

class AccessibleWindow final : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QAccessible::Role role() const override
    {
        return widget()->isWindow() ? QAccessible::Window : QAccessibleWidget::role();
    }
};

QAccessibleInterface *create(const QString &className, QObject *object)
{
    if (object == qApp)
        return new AccessibleApplication;
    // The most special class is asked for first: who comes to this one has no interface of its own.
    return className == QLatin1String("QWidget") ? new AccessibleWindow(qobject_cast<QWidget *>(object)) : nullptr;
}

QWidget *openPopup() { return QApplication::activePopupWidget(); }

} // namespace

void AccessibleApplication::install() { QAccessible::installFactory(create); }

int AccessibleApplication::childCount() const
{
    return QAccessibleApplication::childCount() + (openPopup() != nullptr ? 1 : 0);
}

QAccessibleInterface *AccessibleApplication::child(int index) const
{
    if (index == QAccessibleApplication::childCount() && openPopup() != nullptr)
        return QAccessible::queryAccessibleInterface(openPopup());
    return QAccessibleApplication::child(index);
}

int AccessibleApplication::indexOfChild(const QAccessibleInterface *child) const
{
    if (child != nullptr && child->object() != nullptr && child->object() == openPopup())
        return QAccessibleApplication::childCount();
    return QAccessibleApplication::indexOfChild(child);
}

} // namespace ambertide
