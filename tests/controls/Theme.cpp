#include "controls/Theme.h"

#include <QTest>

using namespace ambertide;

class ThemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsEveryInkReadable_data();
    void keepsEveryInkReadable();
};

void ThemeTest::keepsEveryInkReadable_data()
{
    QTest::addColumn<QPalette>("palette");
    const auto palette = [](QRgb window, QRgb text) {
        QPalette desktop((QColor(window)));
        desktop.setColor(QPalette::WindowText, text);
        return desktop;
    };
    QTest::newRow("light") << housePalette(false, false);
    QTest::newRow("dark") << housePalette(true, false);
    QTest::newRow("light, high contrast") << housePalette(false, true);
    QTest::newRow("dark, high contrast") << housePalette(true, true);
    QTest::newRow("a grey desktop") << palette(0xffd4d0c8, 0xff000000);
    QTest::newRow("a blue dark desktop") << palette(0xff1b2b44, 0xffe0e6f0);
    QTest::newRow("a solarised desktop") << palette(0xfffdf6e3, 0xff073642);
}

void ThemeTest::keepsEveryInkReadable()
{
    QFETCH(QPalette, palette);
    const auto theme = Theme::of(palette);

    const QColor hoveredCard = blended(theme.hover, theme.card);
    for (const auto &surface : {theme.window, theme.panel, theme.card, hoveredCard}) {
        for (const auto &ink :
             {theme.text, theme.secondaryText, theme.accent, theme.green, theme.orange, theme.red, theme.blue})
            QVERIFY2(contrastRatio(ink, surface) >= 4.5,
                     qPrintable(ink.name() + QStringLiteral(" on ") + surface.name()));
    }
    for (const auto &surface : {theme.window, theme.panel})
        QVERIFY(contrastRatio(theme.accentOnHover, blended(theme.hover, surface)) >= 4.5);
    QVERIFY(contrastRatio(theme.onAccent, theme.accent) >= 4.5);
}

QTEST_MAIN(ThemeTest)
#include "Theme.moc"
