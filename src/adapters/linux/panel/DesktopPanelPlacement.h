#pragma once

#include "ports/PanelPlacement.h"

namespace ambertide {

/// Panels on X11 and Wayland, by what the toolkit runs on. After the application object.
class DesktopPanelPlacement final : public PanelPlacement
{
public:
    Manner manner() const override;
    bool hasTransparency() const override;
    bool isButtonHeld() const override;
    void anchor(QWindow &window, std::optional<QPoint> place) override;
};

} // namespace ambertide
