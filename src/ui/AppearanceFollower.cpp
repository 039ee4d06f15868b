#include "ui/AppearanceFollower.h"

#include "ui/controls/HouseStyle.h"
#include "ui/controls/Theme.h"

#include <QApplication>
#include <QStyle>
#include <QTimer>

#include <chrono>

namespace ambertide {

AppearanceFollower::AppearanceFollower(Appearance &appearance) : m_appearance(appearance)
{
    installStyle();
    // A platform theme that knows the desktop's colours tells them, and their changes, by itself.
    m_hasDesktopPalette =
        QApplication::palette().color(QPalette::Window) != m_style->standardPalette().color(QPalette::Window);
    m_isDesktopDark = Theme::of(QApplication::palette()).isDark;
    m_observation = m_appearance.observe([this] {
        follow();
        // A desktop that changes its colours says so here and to the toolkit, in either order.
        QTimer::singleShot(std::chrono::seconds(1), &m_context, [this] { follow(); });
    });
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
    const bool isHighContrast = m_appearance.prefersHighContrast();
    const auto scheme = m_appearance.colorScheme();
    const bool isAnyWelcome = scheme == Appearance::ColorScheme::NoPreference;
    const bool isDark = isAnyWelcome ? m_isDesktopDark : scheme == Appearance::ColorScheme::Dark;
    if (m_hasDesktopPalette && !isHighContrast) {
        QApplication::setPalette(QPalette());
        if (isAnyWelcome || Theme::of(QApplication::palette()).isDark == isDark)
            return;
    }
    QApplication::setPalette(housePalette(isDark, isHighContrast));
}

} // namespace ambertide
