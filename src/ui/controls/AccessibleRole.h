#pragma once

#include <QAccessible>

class QWidget;

namespace ambertide {

/// What a screen reader takes the widget for, where its class alone does not tell. To be set before it is shown.
void setAccessibleRole(QWidget &widget, QAccessible::Role role);

} // namespace ambertide
