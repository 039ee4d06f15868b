#pragma once

#include <QScrollBar>

namespace ambertide {

/// A slim vertical scroll bar without a groove, to be given to a scroll area.
class ScrollBar final : public QScrollBar
{
    Q_OBJECT

public:
    ScrollBar();

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace ambertide
