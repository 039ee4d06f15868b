#include "ui/AppearanceFollower.h"

#include "ui/controls/HouseStyle.h"
#include "ui/controls/Theme.h"

#include <QApplication>
#include <QStyle>
#include <QTimer>

#include <chrono>
#include <optional>
#include <utility>

namespace ambertide {

namespace {

/// The font of a description such as "Noto Sans Bold 12"; nothing without a size in points.
std::optional<QFont> fontDescribed(const QString &description)
{
    auto words = description.split(u' ', Qt::SkipEmptyParts);
    const double size = words.isEmpty() ? 0 : words.takeLast().toDouble();
    if (!(size > 0 && size < 100))
        return std::nullopt;
    QFont font;
    font.setPointSizeF(size);
    const QStringList styles = {QStringLiteral("Regular"), QStringLiteral("Medium"), QStringLiteral("Bold"),
                                QStringLiteral("Italic"), QStringLiteral("Oblique")};
    while (words.size() > 1 && styles.contains(words.constLast())) {
        const auto style = words.takeLast();
        font.setBold(font.bold() || style == QLatin1String("Bold"));
        font.setItalic(font.italic() || style == QLatin1String("Italic") || style == QLatin1String("Oblique"));
    }
    if (!words.isEmpty())
        font.setFamily(words.join(u' ').remove(u','));
    return font;
}

} // namespace

AppearanceFollower::AppearanceFollower(Appearance &appearance)
    : m_appearance(appearance), m_desktopFont(QApplication::font())
{
    installStyle();
    // A palette other than the style's own comes from a platform theme, which knows the desktop's colours and follows
    // their changes by itself.
    m_hasDesktopPalette =
        QApplication::palette().color(QPalette::Window) != m_style->standardPalette().color(QPalette::Window);
    m_isDesktopDark = Theme::of(QApplication::palette()).isDark;
    m_observation = m_appearance.observe([this] {
        follow();
        // When the desktop changes its colours, this and the toolkit hear of it in either order.
        QTimer::singleShot(std::chrono::seconds(1), &m_context, [this] { follow(); });
    });
    follow();
}

void AppearanceFollower::installStyle()
{
    m_style = new HouseStyle;
    // Whoever sets another style has this one deleted.
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
        return; // the next style is about to be installed, and that calls this again
    m_style->setMotionReduced(m_appearance.prefersReducedMotion());
    auto font = fontDescribed(QString::fromStdString(m_appearance.changedFont()));
    const bool isWayland = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    const double textFactor = isWayland ? m_appearance.textFactor() : 1;
    if (!font && std::exchange(m_textFactor, textFactor) != textFactor)
        font = m_desktopFont;
    if (font && font->pointSizeF() > 0)
        font->setPointSizeF(font->pointSizeF() * textFactor);
    if (font && *font != QApplication::font())
        QApplication::setFont(*font);
    const bool isHighContrast = m_appearance.prefersHighContrast();
    const auto scheme = m_appearance.colorScheme();
    const bool hasNoPreference = scheme == Appearance::ColorScheme::NoPreference;
    const bool isDark = hasNoPreference ? m_isDesktopDark : scheme == Appearance::ColorScheme::Dark;
    if (m_hasDesktopPalette && !isHighContrast) {
        QApplication::setPalette(QPalette());
        if (hasNoPreference || Theme::of(QApplication::palette()).isDark == isDark)
            return;
    }
    QApplication::setPalette(housePalette(isDark, isHighContrast));
}

} // namespace ambertide
