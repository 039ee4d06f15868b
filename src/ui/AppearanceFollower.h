#pragma once

#include "ports/Appearance.h"

#include <QPalette>

namespace ambertide {

class HouseStyle;

/// Makes every window look as the user wants: the house style, and where the toolkit has taken no colours from the
/// desktop, light or dark and high contrast as the system says. Follows changes. Main thread, one instance, after the
/// application object; `appearance` must outlive it.
class AppearanceFollower
{
public:
    explicit AppearanceFollower(Appearance &appearance);

private:
    void follow();

    Appearance &m_appearance;
    HouseStyle *m_style; ///< the application's
    bool m_hasDesktopPalette;
    bool m_isDesktopDark; ///< at the start, by that palette
    Observation m_observation;
};

} // namespace ambertide
