#include "ui/panel/MenuBarView.h"

#include "support/ModelBench.h"
#include "ui/controls/SwitchRow.h"
#include "ui/panel/PanelGeometry.h"
#include "ui/panel/TemperatureSlider.h"

#include <QTest>

using namespace ambertide;

struct CountingHaptics final : HapticPerformer
{
    int count = 0;
    void performLevelChange() override { ++count; }
};

class MenuBarViewTest : public QObject
{
    Q_OBJECT

    struct Bench : ModelBench
    {
        explicit Bench(double temperature) : ModelBench(temperature), view(*model, haptics) { view.adjustSize(); }

        CountingHaptics haptics;
        MenuBarView view;
        TemperatureSlider &slider = *view.findChild<TemperatureSlider *>();
        SwitchRow &schedule = *view.findChild<SwitchRow *>();
    };

private Q_SLOTS:
    void saysTheTemperature()
    {
        QCOMPARE(MenuBarView::temperatureText(6500), QStringLiteral("Normal (Daylight)"));
        QCOMPARE(MenuBarView::temperatureText(6499.9), QStringLiteral("6499K"));
        QCOMPARE(MenuBarView::temperatureText(1900.7), QStringLiteral("1900K (Candle)"));
    }

    void throwsTheSwitchOnceWhereverItIsClickedAndByTheSlider()
    {
        Bench bench(3400);
        for (const int x : {3, bench.schedule.width() - 12, bench.schedule.width() / 2}) {
            bench.haptics.count = 0;
            const bool former = bench.model->scheduleEnabled();
            QTest::mouseClick(&bench.schedule, Qt::LeftButton, {}, {x, bench.schedule.height() / 2});
            QCOMPARE(bench.model->scheduleEnabled(), !former);
            QCOMPARE(bench.haptics.count, 1);
        }
        QTest::keyClick(&bench.slider, Qt::Key_Right);
        QVERIFY(!bench.schedule.isChecked());
        QVERIFY(!bench.userDefaults.boolValue(defaults::scheduleEnabled));
        QCOMPARE(bench.model->temperature(), 3500);
    }

    void isFeltAtEachHundredOfADragOnly()
    {
        Bench bench(3000);
        constexpr int room = TemperatureSlider::shadowRoom;
        QTest::mousePress(&bench.slider, Qt::LeftButton, {}, {room + 10 + 90, room + 10}); // the middle of the thumb
        bench.haptics.count = 0;
        for (const int x : {124, 125, 129}) // 3800 K twice, and 3900 K
            QTest::mouseMove(&bench.slider, {room + x, room + 10});
        QCOMPARE(bench.haptics.count, 2);
        QTest::mouseRelease(&bench.slider, Qt::LeftButton, {}, {room + 129, room + 10});
        QCOMPARE(bench.haptics.count, 3);
        bench.model->setTemperature(5000);
        QCOMPARE(bench.haptics.count, 3);
    }

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

QTEST_MAIN(MenuBarViewTest)
#include "MenuBarView.moc"
