#include "ui/controls/AccessibleApplication.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QVariant>
#include <QWidget>

namespace ambertide {

namespace {

constexpr char roleProperty[] = "accessibleRole";

/// A plain widget, which may become a window, or cease to be one, after a screen reader has seen it.
class AccessibleWindow final : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QAccessible::Role role() const override
    {
        return widget()->isWindow() ? QAccessible::Window : QAccessibleWidget::role();
    }
};

/// The toolkit calls this with the most derived class first, and with QWidget if none before that has an interface.
QAccessibleInterface *create(const QString &className, QObject *object)
{
    if (object == qApp)
        return new AccessibleApplication;
    auto *widget = qobject_cast<QWidget *>(object);
    const QVariant role = widget != nullptr ? widget->property(roleProperty) : QVariant();
    if (role.isValid())
        return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
    return className == QLatin1String("QWidget") ? new AccessibleWindow(widget) : nullptr;
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

void setAccessibleRole(QWidget &widget, QAccessible::Role role)
{
    widget.setProperty(roleProperty, static_cast<int>(role));
}

} // namespace ambertide
