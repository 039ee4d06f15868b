#include "ui/panel/PanelGeometry.h"

#include <QTest>

using namespace ambertide;

class PanelGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsBesideThePanelThatWasClicked()
    {
        const auto position = [](const QPoint &pointer, const QRect &available, const QRect &screen) {
            return panelPosition({300, 200}, pointer, screen, available);
        };
        const QRect screen(0, 0, 1920, 1080);
        const QRect belowPanel(0, 24, 1920, 1056);
        QCOMPARE(position({1000, 12}, belowPanel, screen), QPoint(850, 28));
        QCOMPARE(position({1910, 12}, belowPanel, screen), QPoint(1616, 28)); // in the corner
        QCOMPARE(position({1000, 1070}, {0, 0, 1920, 1040}, screen), QPoint(850, 836));
        QCOMPARE(position({10, 500}, {48, 0, 1872, 1080}, screen), QPoint(52, 400));
        QCOMPARE(position({1900, 500}, {0, 0, 1872, 1080}, screen), QPoint(1568, 400));
        QCOMPARE(position({1000, 12}, screen, screen), QPoint(850, 32)); // nothing is reserved
        QCOMPARE(position({1930, 12}, {1920, 24, 800, 576}, {1920, 0, 800, 600}), QPoint(1924, 28));
        QCOMPARE(position({100, 12}, {0, 24, 200, 126}, {0, 0, 200, 150}), QPoint(0, 24)); // it does not fit
    }
};

QTEST_APPLESS_MAIN(PanelGeometryTest)
#include "PanelGeometry.moc"
