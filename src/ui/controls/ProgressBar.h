#pragma once

#include <QProgressBar>
#include <QVariantAnimation>

namespace ambertide {

/// A slim bar in the accent. Busy until it is given a range; being busy shows as motion, or as a still pattern where
/// motion is unwanted.
class ProgressBar final : public QProgressBar
{
    Q_OBJECT

public:
    explicit ProgressBar(const QString &accessibleName);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool isBusy() const { return minimum() == maximum(); }
    void paintBusy(QPainter &painter) const;
    void paintReached(QPainter &painter) const;

    QVariantAnimation m_sweep; ///< 0 to 1
};

} // namespace ambertide
