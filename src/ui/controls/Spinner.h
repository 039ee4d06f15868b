#pragma once

#include <QTimer>
#include <QWidget>

namespace ambertide {

/// Shows that work is under way. Turns while it is visible; stands still where motion is unwanted.
class Spinner final : public QWidget
{
    Q_OBJECT

public:
    explicit Spinner(const QString &accessibleName);

    QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QTimer m_turn;
    int m_position = 0; ///< in spokes
};

} // namespace ambertide
