#pragma once

#include <QTime>
#include <QWidget>

class QTimeEdit;

namespace ambertide {

/// Hour and minute in one small field, as in "7:30 PM": typed, stepped with the arrow keys and the wheel, or with the
/// mouse alone. The part that was clicked last is the one stepped.
class TimeField final : public QWidget
{
    Q_OBJECT

public:
    explicit TimeField(const QString &accessibleName);

    QTime time() const;
    void setTime(const QTime &time);

Q_SIGNALS:
    void timeChanged(const QTime &time);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();

    QTimeEdit *m_edit = nullptr;
};

} // namespace ambertide
