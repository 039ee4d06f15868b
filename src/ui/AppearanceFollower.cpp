#include "ui/AppearanceFollower.h"

#include "ui/controls/HouseStyle.h"
#include "ui/controls/Theme.h"

#include <QApplication>
#include <QStyle>

namespace ambertide {

AppearanceFollower::AppearanceFollower(Appearance &appearance) : m_appearance(appearance)
{
    installStyle();
    // A platform theme that knows the desktop's colours tells them, and their changes, by itself.
    m_hasDesktopPalette =
        QApplication::palette().color(QPalette::Window) != m_style->standardPalette().color(QPalette::Window);
    m_isDesktopDark = Theme::of(QApplication::palette()).isDark;
    m_observation = m_appearance.observe([this] { follow(); });
    follow();
}

void AppearanceFollower::installStyle()
{
    m_style = new HouseStyle;
    // Another style in its place deletes it.
    QObject::connect(
        m_style, &QObject::destroyed, &m_context,
        [this] {
            installStyle();
            follow();
        },
        Qt::QueuedConnection);
    QApplication::setStyle(m_style);
}

void AppearanceFollower::follow()
{
    if (m_style.isNull())
        return; // the next one will follow
    m_style->setMotionReduced(m_appearance.prefersReducedMotion());
    const auto scheme = m_appearance.colorScheme();
    const bool isDark =
        scheme == Appearance::ColorScheme::Dark || (scheme == Appearance::ColorScheme::NoPreference && m_isDesktopDark);
    if (!m_hasDesktopPalette || m_appearance.prefersHighContrast())
        QApplication::setPalette(housePalette(isDark, m_appearance.prefersHighContrast()));
    else
        QApplication::setPalette(QPalette());
}

} // namespace ambertide
