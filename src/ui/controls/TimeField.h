#pragma once

#include <QTimeEdit>

namespace ambertide {

/// Hour and minute in one small field, as in "7:30 PM": typed, stepped with the arrow keys and the wheel, or with the
/// mouse alone. The part that was clicked last is the one stepped.
class TimeField final : public QTimeEdit
{
    Q_OBJECT

public:
    explicit TimeField(const QString &accessibleName);

private:
    /// A button that steps the selected part and leaves the focus where it is.
    QWidget *chevron(QLatin1String symbol, const QString &name, void (QTimeEdit::*step)());
};

} // namespace ambertide
