#pragma once

#include <QIcon>
#include <QWidget>

namespace ambertide {

/// The application's icon, for the windows' frames and task lists.
QIcon applicationIcon();

/// The application's icon as a picture in a window, sharp at every scale. Says nothing to a screen reader: the
/// product's name stands beside it.
class ApplicationIcon final : public QWidget
{
    Q_OBJECT

public:
    /// `size` in logical pixels.
    explicit ApplicationIcon(int size);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace ambertide
