#include "ui/controls/AccessibleRole.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace ambertide {

namespace {

constexpr char roleProperty[] = "accessibleRole";

QAccessibleInterface *interfaceWithRole(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    const QVariant role = widget != nullptr ? widget->property(roleProperty) : QVariant();
    return role.isValid() ? new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt())) : nullptr;
}

} // namespace

void setAccessibleRole(QWidget &widget, QAccessible::Role role)
{
    static const bool isFactoryInstalled = (QAccessible::installFactory(interfaceWithRole), true);
    Q_UNUSED(isFactoryInstalled)
    widget.setProperty(roleProperty, static_cast<int>(role));
}

} // namespace ambertide
