#pragma once

#include <QAbstractSpinBox>
#include <QTime>

#include <optional>

namespace ambertide {

/// Hour and minute in one small field, as in "7:30 PM", or "19:30" where the locale counts 24 hours. Takes a time in
/// any way that people write it: "7:30 pm", "730p", "7p", "19:30", "1930", "19.30", with or without spaces. The arrow
/// keys, the wheel and two small buttons step the part in which the cursor is.
class TimeField final : public QAbstractSpinBox
{
    Q_OBJECT

public:
    explicit TimeField(const QString &accessibleName);

    /// The time that the text says; nothing while it cannot be read, and then it is shown in red.
    std::optional<QTime> time() const { return m_time; }
    void setTime(const QTime &time);

    void stepBy(int steps) override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void timeChanged();

protected:
    bool event(QEvent *event) override;
    StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
    void focusOutEvent(QFocusEvent *event) override;

private:
    /// A button that steps the selected part and leaves the focus where it is.
    QWidget *chevron(QLatin1String symbol, const QString &name, int steps);
    void read(const QString &text);
    void showInk();

    QString m_format; ///< in which setTime() writes
    std::optional<QTime> m_time;
    QTime m_lastTime; ///< the last one that could be read
};

} // namespace ambertide
