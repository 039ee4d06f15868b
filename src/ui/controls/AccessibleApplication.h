#pragma once

#include <QAccessibleObject>

class QWidget;

namespace ambertide {

/// What assistive technology sees of the application: its windows, the popups among them, which the toolkit leaves out.
/// Main thread.
class AccessibleApplication final : public QAccessibleApplication
{
public:
    /// To be called once, right after the application object has been made. From then on a window that is a plain
    /// widget is called a window, and roles that were set count.
    static void install();

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
};

/// What a screen reader takes the widget for, where its class alone does not tell. To be set before it is shown.
void setAccessibleRole(QWidget &widget, QAccessible::Role role);

} // namespace ambertide
