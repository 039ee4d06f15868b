#pragma once

#include "ports/PanelPlacement.h"

#include <QMargins>
#include <QWidget>

#include <optional>

namespace ambertide {

/// The window around the panel's content, as the desktop lets it stand. Where a window can be see-through, the panel is
/// all of it but the margins of its layout, which hold a shadow. Escape closes it, and so does a press elsewhere
/// unless it is an ordinary window. Its owner deletes it when it has closed.
class PanelWindow final : public QWidget
{
    Q_OBJECT

public:
    /// Takes `content` over.
    PanelWindow(QWidget *content, PanelPlacement &placement, PanelPlacement::Manner manner);

    /// Shows it beside the icon at `place`, or where the desktop has its icons, as far as its manner lets it choose.
    void open(std::optional<QPoint> place);

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
    bool isFramed() const { return m_manner == PanelPlacement::Manner::Window; }
    QRect surface() const { return rect().marginsRemoved(m_shadow); }
    void moveBesideIcon(std::optional<QPoint> place);

    PanelPlacement &m_placement;
    PanelPlacement::Manner m_manner;
    int m_cornerRadius;
    bool m_isSeeThrough;
    QMargins m_shadow;
};

} // namespace ambertide
