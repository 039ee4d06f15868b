#pragma once

#include "ports/PanelPlacement.h"

namespace ambertide {

/// Places panels on X11 or Wayland, whichever the toolkit runs on. Needs the application object.
class DesktopPanelPlacement final : public PanelPlacement
{
public:
    Manner manner() const override;
    bool hasTransparency() const override;
    bool isButtonHeld() const override;
    int cornerRadius() const override;
    int gap() const override;
    void anchor(QWindow &window, const QMargins &shadow, std::optional<QPoint> place) override;
};

} // namespace ambertide
