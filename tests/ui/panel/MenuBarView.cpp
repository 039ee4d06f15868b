#include "ui/panel/MenuBarView.h"

#include "support/ModelBench.h"
#include "ui/controls/SwitchRow.h"
#include "ui/panel/PanelGeometry.h"
#include "ui/panel/TemperatureSlider.h"

#include <QSignalSpy>
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
        explicit Bench(double temperature) : ModelBench(temperature), view(*model, haptics) {}

        CountingHaptics haptics;
        MenuBarView view;
        TemperatureSlider &slider = *view.findChild<TemperatureSlider *>();
        SwitchRow &schedule = *view.findChild<SwitchRow *>();
    };

private Q_SLOTS:
    void saysTheTemperature_data();
    void saysTheTemperature();
    void switchesTheScheduleOffWhenTheSliderIsTouched();
    void throwsTheSwitchOnceWhereverTheRowIsClicked();
    void isFeltAtEachHundredOfADragOnly();
    void standsBesideThePanelThatWasClicked_data();
    void standsBesideThePanelThatWasClicked();
};

void MenuBarViewTest::saysTheTemperature_data()
{
    QTest::addColumn<double>("temperature");
    QTest::addColumn<QString>("expected");
    QTest::newRow("neutral") << 6500.0 << "Normal (Daylight)";
    QTest::newRow("beyond neutral") << 7000.0 << "Normal (Daylight)";
    QTest::newRow("just below") << 6499.9 << "6499K";
    QTest::newRow("described") << 3400.0 << "3400K (Halogen)";
    QTest::newRow("described when truncated") << 1900.7 << "1900K (Candle)";
    QTest::newRow("not described") << 3450.0 << "3450K";
}

void MenuBarViewTest::saysTheTemperature()
{
    QFETCH(double, temperature);
    QTEST(MenuBarView::temperatureText(temperature), "expected");
}

void MenuBarViewTest::switchesTheScheduleOffWhenTheSliderIsTouched()
{
    Bench bench(3400);
    bench.model->setScheduleEnabled(true);
    QVERIFY(bench.schedule.isChecked());

    QTest::keyClick(&bench.slider, Qt::Key_Right);

    QVERIFY(!bench.schedule.isChecked());
    QVERIFY(!bench.userDefaults.boolValue(defaults::scheduleEnabled));
    QCOMPARE(bench.model->temperature(), 3500);
}

void MenuBarViewTest::throwsTheSwitchOnceWhereverTheRowIsClicked()
{
    Bench bench(3400);
    bench.view.adjustSize();
    for (const int x : {3, bench.schedule.width() - 12}) {
        bench.haptics.count = 0;
        const bool former = bench.model->scheduleEnabled();
        QTest::mouseClick(&bench.schedule, Qt::LeftButton, {}, {x, bench.schedule.height() / 2});
        QCOMPARE(bench.model->scheduleEnabled(), !former);
        QCOMPARE(bench.haptics.count, 1);
    }
}

void MenuBarViewTest::isFeltAtEachHundredOfADragOnly()
{
    Bench bench(3000);
    const auto drag = [&](std::initializer_list<int> positions) {
        QTest::mousePress(&bench.slider, Qt::LeftButton, {}, {10 + 90, 10}); // the middle of the thumb
        bench.haptics.count = 0;
        for (const int x : positions)
            QTest::mouseMove(&bench.slider, {x, 10});
    };
    bench.slider.resize(268, bench.slider.height());

    drag({124, 125, 129});
    QCOMPARE(bench.haptics.count, 2);
    bench.haptics.count = 0;
    QTest::mouseRelease(&bench.slider, Qt::LeftButton, {}, {129, 10});
    QCOMPARE(bench.haptics.count, 1);
    bench.model->setTemperature(5000);
    QCOMPARE(bench.haptics.count, 1);
}

void MenuBarViewTest::standsBesideThePanelThatWasClicked_data()
{
    QTest::addColumn<QPoint>("pointer");
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QPoint>("expected");
    const QRect screen(0, 0, 1920, 1080);
    QTest::newRow("panel at the top") << QPoint(1000, 12) << screen << QRect(0, 24, 1920, 1056) << QPoint(850, 28);
    QTest::newRow("in the corner") << QPoint(1910, 12) << screen << QRect(0, 24, 1920, 1056) << QPoint(1616, 28);
    QTest::newRow("panel at the bottom") << QPoint(1000, 1070) << screen << QRect(0, 0, 1920, 1040) << QPoint(850, 836);
    QTest::newRow("panel at the left") << QPoint(10, 500) << screen << QRect(48, 0, 1872, 1080) << QPoint(52, 400);
    QTest::newRow("panel at the right") << QPoint(1900, 500) << screen << QRect(0, 0, 1872, 1080) << QPoint(1568, 400);
    QTest::newRow("nothing reserved") << QPoint(1000, 12) << screen << screen << QPoint(850, 32);
    QTest::newRow("second screen") << QPoint(1930, 12) << QRect(1920, 0, 800, 600) << QRect(1920, 24, 800, 576)
                                   << QPoint(1924, 28);
    QTest::newRow("screen too small") << QPoint(100, 12) << QRect(0, 0, 200, 150) << QRect(0, 24, 200, 126)
                                      << QPoint(0, 24);
}

void MenuBarViewTest::standsBesideThePanelThatWasClicked()
{
    QFETCH(QPoint, pointer);
    QFETCH(QRect, screen);
    QFETCH(QRect, available);
    QTEST(panelPosition({300, 200}, pointer, screen, available), "expected");
}

QTEST_MAIN(MenuBarViewTest)
#include "MenuBarView.moc"
