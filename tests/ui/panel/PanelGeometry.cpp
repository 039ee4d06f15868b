#include "ui/panel/PanelGeometry.h"

#include <QTest>

#include <tuple>

using namespace ambertide;

class PanelGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsBesideThePanelThatWasClicked()
    {
        const QRect screen(0, 0, 1920, 1080);
        const QRect belowPanel(0, 24, 1920, 1056);
        const QRect abovePanel(0, 0, 1920, 1040);
        const std::tuple<const char *, std::optional<QPoint>, QRect, QRect, QPoint> cases[] = {
            {"panel at the top", QPoint(1000, 12), belowPanel, screen, {850, 28}},
            {"in the corner", QPoint(1910, 12), belowPanel, screen, {1616, 28}},
            {"panel at the foot", QPoint(1000, 1070), abovePanel, screen, {850, 836}},
            {"panel at the left", QPoint(10, 500), {48, 0, 1872, 1080}, screen, {52, 400}},
            {"panel at the right", QPoint(1900, 500), {0, 0, 1872, 1080}, screen, {1568, 400}},
            {"nothing is reserved", QPoint(1000, 12), screen, screen, {850, 32}},
            {"another panel that hides", QPoint(1000, 1070), belowPanel, screen, {850, 850}},
            {"menu of a panel", QPoint(1000, 60), belowPanel, screen, {850, 28}},
            {"popup of a panel, at the side", QPoint(1890, 800), abovePanel, screen, {1616, 836}},
            {"no click", {}, abovePanel, screen, {1616, 836}},
            {"no click and no panel", {}, screen, screen, {1616, 4}},
            {"second screen", QPoint(1930, 12), {1920, 24, 800, 576}, {1920, 0, 800, 600}, {1924, 28}},
            {"it does not fit", QPoint(100, 12), {0, 24, 200, 126}, {0, 0, 200, 150}, {0, 24}},
        };
        for (const auto &[name, pointer, available, whole, expected] : cases)
            QVERIFY2(panelPosition({300, 200}, pointer, whole, available, 4) == expected, name);
    }
};

QTEST_APPLESS_MAIN(PanelGeometryTest)
#include "PanelGeometry.moc"
