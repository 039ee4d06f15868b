#pragma once

#include <QAccessibleObject>

class QWidget;

namespace ambertide {

/// What assistive technology sees of the application: its windows, including an open popup, which the toolkit leaves
/// out. Main thread.
class AccessibleApplication final : public QAccessibleApplication
{
public:
    /// To be called once, right after the application object has been created. From then on a window that is a plain
    /// widget is reported as a window, and roles set by setAccessibleRole() are used.
    static void install();

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
};

/// Sets what a screen reader takes the widget for, where its class does not tell. To be called before it is shown.
void setAccessibleRole(QWidget &widget, QAccessible::Role role);

} // namespace ambertide
