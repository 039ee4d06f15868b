#include "adapters/linux/panel/LayerGeometry.h"

#include <QTest>

#include <tuple>

using namespace ambertide;

class LayerGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsBesideTheIcon()
    {
        const QRect first(0, 0, 1920, 1080);
        const QRect second(1920, 0, 800, 600);
        const std::tuple<const char *, std::optional<QPoint>, QRect, QPoint> cases[] = {
            {"unknown place", {}, first, {1616, 4}},
            {"panel at the top", QPoint(1000, 12), first, {850, 4}},
            {"panel at the bottom", QPoint(600, 1070), first, {450, 876}},
            {"panel at the left", QPoint(10, 500), first, {4, 400}},
            {"panel at the right", QPoint(1910, 700), first, {1616, 600}},
            {"in the corner", QPoint(1919, 1079), first, {1616, 876}},
            {"second screen", QPoint(2000, 1), second, {1924, 4}},
        };
        for (const auto &[name, place, screen, expected] : cases) {
            const QSize panel(300, 200);
            const auto [edges, margins] = layerPosition(panel, place, screen, 4);
            // As the compositor reads it.
            const auto inside = screen.marginsRemoved(margins);
            const int x = edges.testFlag(Qt::RightEdge) ? inside.right() - panel.width() + 1 : inside.left();
            const int y = edges.testFlag(Qt::BottomEdge) ? inside.bottom() - panel.height() + 1 : inside.top();
            QVERIFY2(QPoint(x, y) == expected, name);
        }
        // Screens at 150 and 200 percent.
        const std::vector<ScaledScreen> scaled{{{0, 0, 1280, 720}, {1920, 1080}}, {{1280, 0, 960, 540}, {1920, 1080}}};
        QCOMPARE(logicalPlace({1905, 1065}, scaled), QPoint(1270, 710));
        QCOMPARE(logicalPlace({2600, 1000}, scaled), QPoint(1300, 500));
        QCOMPARE(logicalPlace({9000, 10}, scaled), QPoint(9000, 10));
    }
};

QTEST_APPLESS_MAIN(LayerGeometryTest)
#include "LayerGeometry.moc"
