#include "ui/panel/PanelGeometry.h"
#include "ui/panel/TemperatureSlider.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QWheelEvent>

#include <tuple>

using namespace ambertide;

/// Where the panel stands, and the slider in it.
class Panel : public QObject
{
    Q_OBJECT

    static constexpr int room = TemperatureSlider::shadowRoom;

    /// A slider whose track is 268 wide, and what it reports, in order: values, + and - for the start and end of
    /// editing. Places are in the 268 by 20 that track and thumb have.
    struct Bench
    {
        TemperatureSlider slider = TemperatureSlider(1000, 6500, 100);
        QString reports;

        explicit Bench(double value, bool isMirrored = false)
        {
            slider.resize(268 + 2 * room, slider.height());
            slider.setLayoutDirection(isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
            slider.follow(value);
            connect(&slider, &TemperatureSlider::valueChosen, &slider, [this](double chosen) {
                reports += QString::number(chosen) + QLatin1Char(' ');
                slider.follow(chosen);
            });
            connect(&slider, &TemperatureSlider::editingChanged, &slider,
                    [this](bool isEditing) { reports += QLatin1String(isEditing ? "+ " : "- "); });
        }
        void press(int x, int y = 10) { QTest::mousePress(&slider, Qt::LeftButton, {}, {room + x, room + y}); }
        void move(int x) { QTest::mouseMove(&slider, {room + x, room + 10}); }
        void release(int x, int y = 10) { QTest::mouseRelease(&slider, Qt::LeftButton, {}, {room + x, room + y}); }
        QString take() { return std::exchange(reports, {}).trimmed(); }
    };

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
            {"panel at the left", QPoint(40, 500), {48, 0, 1872, 1080}, screen, {52, 400}},
            {"panel at the right", QPoint(1880, 500), {0, 0, 1872, 1080}, screen, {1568, 400}},
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

    void mapsTapsToTheWholeWidth()
    {
        const auto tap = [](int x, int y, bool isMirrored = false) {
            Bench bench(3400, isMirrored);
            bench.press(x, y);
            bench.release(x, y);
            return bench.take();
        };
        QCOMPARE(tap(0, 6), QStringLiteral("1000 + -"));
        QCOMPARE(tap(267, 10), QStringLiteral("6500 + -"));
        QCOMPARE(tap(201, 10), QStringLiteral("5100 + -"));
        QCOMPARE(tap(201, 10, true), QStringLiteral("2400 + -"));
        QCOMPARE(tap(67, 4), QString()); // above the track
        QCOMPARE(tap(67, 15), QString());
    }

    void tellsOfEveryMovementOfADragWhichNothingElseMoves()
    {
        Bench bench(1000);
        bench.press(5);
        bench.move(124);
        bench.slider.follow(6000);
        QCOMPARE(bench.slider.value(), 3800);
        bench.move(125);
        bench.release(125);
        QCOMPARE(bench.take(), QStringLiteral("+ 1100 + 3800 + 3800 -"));
        bench.slider.follow(5000);
        QCOMPARE(bench.slider.value(), 5000);

        bench.slider.show();
        bench.press(10 + 180);
        bench.take();
        bench.slider.hide();
        QCOMPARE(bench.take(), QStringLiteral("-"));
    }

    void keysWheelAndAssistiveTechnologyCountAsTaps()
    {
        Bench bench(3400);
        for (const auto key : {Qt::Key_Right, Qt::Key_PageDown, Qt::Key_End})
            QTest::keyClick(&bench.slider, key);
        QCOMPARE(bench.take(), QStringLiteral("3500 + - 3000 + - 6500 + -"));
        bench.slider.setLayoutDirection(Qt::RightToLeft);
        QTest::keyClick(&bench.slider, Qt::Key_Right);
        QCOMPARE(bench.take(), QStringLiteral("6400 + -"));
        for (const int eighths : {60, 60, -240}) {
            QWheelEvent turn({50, 10}, {50, 10}, {}, {0, eighths}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                             false);
            QApplication::sendEvent(&bench.slider, &turn);
        }
        QCOMPARE(bench.take(), QStringLiteral("6500 + - 6300 + -"));

        QAccessible::queryAccessibleInterface(&bench.slider)->valueInterface()->setCurrentValue(4320);
        QCOMPARE(bench.take(), QStringLiteral("4300 + -"));
    }
};

QTEST_MAIN(Panel)
#include "Panel.moc"
