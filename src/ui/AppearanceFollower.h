#pragma once

#include "ports/Appearance.h"

#include <QObject>
#include <QPointer>

namespace ambertide {

class HouseStyle;

/// Makes every window look as the user wants: in the house style, light or dark and in high contrast as the system
/// says, with the desktop's own colours where the toolkit knows them and they agree. Follows changes, and puts the
/// house style back when a plugin of the desktop has replaced it. Main thread, one instance, after the application
/// object; `appearance` must outlive it.
class AppearanceFollower
{
public:
    explicit AppearanceFollower(Appearance &appearance);

private:
    void installStyle();
    void follow();

    Appearance &m_appearance;
    QPointer<HouseStyle> m_style; ///< the application's
    bool m_hasDesktopPalette;
    bool m_isDesktopDark; ///< at the start, by that palette
    Observation m_observation;
    QObject m_context; ///< of the connection to the style
};

} // namespace ambertide
