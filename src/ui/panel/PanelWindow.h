#pragma once

#include "ports/PanelPlacement.h"

#include <QMargins>
#include <QWidget>

#include <optional>

namespace ambertide {

/// The window around the panel's content, placed as the desktop allows. Where windows can be translucent, the margins
/// of its layout hold a shadow, and the rest is the panel. Escape closes it, and so does a press elsewhere unless it is
/// an ordinary window. Its owner deletes it when it has closed.
class PanelWindow final : public QWidget
{
    Q_OBJECT

public:
    /// Takes ownership of `content`.
    PanelWindow(QWidget *content, PanelPlacement &placement, PanelPlacement::Manner manner);

    /// Shows it beside the icon at `place` or, without one, where the desktop has its icons, as far as its manner
    /// allows.
    void open(std::optional<QPoint> place);
    /// Whether it is an ordinary window.
    bool isFramed() const { return m_manner == PanelPlacement::Manner::Window; }

Q_SIGNALS:
    void closed();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QRect surface() const { return rect().marginsRemoved(m_shadow); }
    void moveBesideIcon(std::optional<QPoint> place);

    PanelPlacement &m_placement;
    PanelPlacement::Manner m_manner;
    int m_cornerRadius;
    bool m_isSeeThrough;
    QMargins m_shadow;
};

} // namespace ambertide
