#pragma once

#include <QWidget>

namespace ambertide {

/// A hairline across the width.
class Divider final : public QWidget
{
    Q_OBJECT

public:
    Divider();

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace ambertide
