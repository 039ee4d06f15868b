#pragma once

#include "ports/Appearance.h"

#include <QFont>
#include <QObject>
#include <QPointer>

namespace ambertide {

class HouseStyle;

/// Makes every window look as the user wants: in the house style, light or dark and in high contrast as the system
/// says, with the desktop's own colours if the toolkit knows them and they are light or dark as wanted. Follows
/// changes, and puts the house style back when a plugin of the desktop has replaced it. Main thread, one instance,
/// created after the application object; `appearance` must outlive it.
class AppearanceFollower
{
public:
    explicit AppearanceFollower(Appearance &appearance);

private:
    void installStyle();
    void follow();

    Appearance &m_appearance;
    QPointer<HouseStyle> m_style; ///< belongs to QApplication
    const QFont m_desktopFont;    ///< at the start
    double m_textFactor = 1;      ///< of the application's font to that
    bool m_hasDesktopPalette;
    bool m_isDesktopDark; ///< whether the palette at the start was dark
    Observation m_observation;
    QObject m_context; ///< receives the calls from the style and the event loop, and is destroyed first
};

} // namespace ambertide
