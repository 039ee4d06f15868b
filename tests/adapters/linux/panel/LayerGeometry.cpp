#include "adapters/linux/panel/LayerGeometry.h"

#include <QTest>

using namespace ambertide;

class LayerGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsBesideTheIcon_data();
    void standsBesideTheIcon();
};

void LayerGeometryTest::standsBesideTheIcon_data()
{
    QTest::addColumn<std::optional<QPoint>>("place");
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<QRect>("expected");
    const QRect screen(0, 0, 1920, 1080);
    const auto row = [](const char *name, std::optional<QPoint> place, const QRect &on, const QRect &expected) {
        QTest::newRow(name) << place << on << expected;
    };
    row("unknown", {}, screen, {1616, 4, 300, 200});
    row("panel at the top", QPoint(1000, 12), screen, {850, 4, 300, 200});
    row("panel at the bottom", QPoint(600, 1070), screen, {450, 876, 300, 200});
    row("panel at the left", QPoint(10, 500), screen, {4, 400, 300, 200});
    row("panel at the right", QPoint(1910, 700), screen, {1616, 600, 300, 200});
    row("in the corner", QPoint(1919, 1079), screen, {1616, 876, 300, 200});
    row("second screen", QPoint(2000, 1), {1920, 0, 800, 600}, {1924, 4, 300, 200});
}

void LayerGeometryTest::standsBesideTheIcon()
{
    QFETCH(std::optional<QPoint>, place);
    QFETCH(QRect, screen);
    const QSize panel(300, 200);

    const auto [edges, margins] = layerPosition(panel, place, screen);

    // As the compositor reads it.
    QRect shown({}, panel);
    shown.moveLeft(screen.left() + margins.left());
    shown.moveTop(screen.top() + margins.top());
    if (edges.testFlag(Qt::RightEdge))
        shown.moveRight(screen.right() - margins.right());
    if (edges.testFlag(Qt::BottomEdge))
        shown.moveBottom(screen.bottom() - margins.bottom());
    QTEST(shown, "expected");
}

QTEST_APPLESS_MAIN(LayerGeometryTest)
#include "LayerGeometry.moc"
