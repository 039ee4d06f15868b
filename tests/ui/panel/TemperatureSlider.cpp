#include "ui/panel/TemperatureSlider.h"

#include "ui/panel/Color.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QWheelEvent>

using namespace ambertide;

class TemperatureSliderTest : public QObject
{
    Q_OBJECT

    /// A slider, 268 wide unless said otherwise, and what it reports, in order: values, + and - for the start and end
    /// of editing.
    struct Bench
    {
        TemperatureSlider slider;
        QString reports;

        explicit Bench(double value = 3400) : slider(value, {.minValue = 1000, .maxValue = 6500, .step = 100})
        {
            slider.resize(268, slider.height());
            connect(&slider, &TemperatureSlider::valueChosen, &slider, [this](double chosen) {
                reports += QString::number(chosen) + QLatin1Char(' ');
                slider.setValue(chosen);
            });
            connect(&slider, &TemperatureSlider::editingChanged, &slider,
                    [this](bool isEditing) { reports += QLatin1String(isEditing ? "+ " : "- "); });
        }
        QString take() { return std::exchange(reports, {}).trimmed(); }
    };

private Q_SLOTS:
    void mapsTapsToTheWholeWidth_data();
    void mapsTapsToTheWholeWidth();
    void mapsDragsToTheWidthLessTheThumbs_data();
    void mapsDragsToTheWidthLessTheThumbs();
    void tellsOfEveryMovementAndOfTheEnd();
    void keepsTheThumbWithThePointerDuringADrag();
    void endsADragWhenItIsHidden();
    void stepsByKeysAsIfTapped_data();
    void stepsByKeysAsIfTapped();
    void stepsByTheWheel();
    void isReadOutAndSetByAssistiveTechnology();
    void paintsTheEndsAndTheMiddle();
};

void TemperatureSliderTest::mapsTapsToTheWholeWidth_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<bool>("isRightToLeft");
    QTest::addColumn<QString>("expected");
    QTest::newRow("leading end") << 0 << 10 << false << "1000 + -";
    QTest::newRow("trailing end") << 267 << 10 << false << "6500 + -";
    QTest::newRow("a quarter") << 67 << 10 << false << "2400 + -";
    QTest::newRow("three quarters") << 201 << 10 << false << "5100 + -";
    QTest::newRow("mirrored") << 201 << 10 << true << "2400 + -";
    QTest::newRow("upper edge of the track") << 67 << 6 << false << "2400 + -";
    QTest::newRow("above the track") << 67 << 4 << false << "";
    QTest::newRow("below the track") << 67 << 15 << false << "";
}

void TemperatureSliderTest::mapsTapsToTheWholeWidth()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(bool, isRightToLeft);
    Bench bench;
    bench.slider.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);

    QTest::mouseClick(&bench.slider, Qt::LeftButton, {}, {x, y});

    QTEST(bench.take(), "expected");
}

void TemperatureSliderTest::mapsDragsToTheWidthLessTheThumbs_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<bool>("isRightToLeft");
    QTest::addColumn<double>("expected");
    QTest::newRow("leading end") << 0 << false << 1000.0;
    QTest::newRow("far beyond the leading end") << -500 << false << 1000.0;
    QTest::newRow("trailing end of the travel") << 248 << false << 6500.0;
    QTest::newRow("beyond the trailing end") << 400 << false << 6500.0;
    QTest::newRow("half of the travel, a half step up") << 124 << false << 3800.0;
    QTest::newRow("where a tap would choose less") << 201 << false << 5500.0;
    QTest::newRow("mirrored") << 67 << true << 5500.0;
}

void TemperatureSliderTest::mapsDragsToTheWidthLessTheThumbs()
{
    QFETCH(int, x);
    QFETCH(bool, isRightToLeft);
    Bench bench;
    bench.slider.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    const int thumb = 10 + 108; // centre, at 3400 K

    QTest::mousePress(&bench.slider, Qt::LeftButton, {}, {isRightToLeft ? 268 - thumb : thumb, 10});
    QTest::mouseMove(&bench.slider, {x, 10});
    QTest::mouseRelease(&bench.slider, Qt::LeftButton, {}, {x, 10});

    QTEST(bench.slider.value(), "expected");
}

void TemperatureSliderTest::tellsOfEveryMovementAndOfTheEnd()
{
    Bench bench(1000);

    QTest::mousePress(&bench.slider, Qt::LeftButton, {}, {5, 10});
    QTest::mouseMove(&bench.slider, {124, 10});
    QTest::mouseMove(&bench.slider, {125, 10});
    QTest::mouseRelease(&bench.slider, Qt::LeftButton, {}, {125, 10});

    QCOMPARE(bench.take(), QStringLiteral("+ 1100 + 3800 + 3800 -"));
}

void TemperatureSliderTest::keepsTheThumbWithThePointerDuringADrag()
{
    Bench bench(1000);
    QTest::mousePress(&bench.slider, Qt::LeftButton, {}, {5, 10});

    bench.slider.setValue(6000);
    QCOMPARE(bench.slider.localValue(), 1100);

    QTest::mouseRelease(&bench.slider, Qt::LeftButton, {}, {5, 10});
    bench.slider.setValue(5000);
    QCOMPARE(bench.slider.localValue(), 5000);
}

void TemperatureSliderTest::endsADragWhenItIsHidden()
{
    Bench bench(1000);
    bench.slider.show();
    QTest::mousePress(&bench.slider, Qt::LeftButton, {}, {5, 10});
    bench.take();

    bench.slider.hide();

    QCOMPARE(bench.take(), QStringLiteral("-"));
}

void TemperatureSliderTest::stepsByKeysAsIfTapped_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("isRightToLeft");
    QTest::addColumn<QString>("expected");
    QTest::newRow("right") << Qt::Key_Right << false << "3500";
    QTest::newRow("right, mirrored") << Qt::Key_Right << true << "3300";
    QTest::newRow("down") << Qt::Key_Down << false << "3300";
    QTest::newRow("page up") << Qt::Key_PageUp << false << "3900";
    QTest::newRow("page down") << Qt::Key_PageDown << true << "2900";
    QTest::newRow("home") << Qt::Key_Home << false << "1000";
    QTest::newRow("end") << Qt::Key_End << false << "6500";
}

void TemperatureSliderTest::stepsByKeysAsIfTapped()
{
    QFETCH(Qt::Key, key);
    QFETCH(bool, isRightToLeft);
    QFETCH(QString, expected);
    Bench bench;
    bench.slider.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);

    QTest::keyClick(&bench.slider, key);

    QCOMPARE(bench.take(), expected + QStringLiteral(" + -"));
}

void TemperatureSliderTest::stepsByTheWheel()
{
    Bench bench;
    const auto turn = [&](int eighths) {
        QWheelEvent event({50, 10}, {50, 10}, {}, {0, eighths}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&bench.slider, &event);
    };

    turn(60);
    QCOMPARE(bench.take(), QString());
    turn(60);
    QCOMPARE(bench.take(), QStringLiteral("3500 + -"));
    turn(-240);
    QCOMPARE(bench.take(), QStringLiteral("3300 + -"));
}

void TemperatureSliderTest::isReadOutAndSetByAssistiveTechnology()
{
    Bench bench;
    auto *accessible = QAccessible::queryAccessibleInterface(&bench.slider);
    QVERIFY(accessible != nullptr && accessible->valueInterface() != nullptr);

    QCOMPARE(accessible->role(), QAccessible::Slider);
    QCOMPARE(accessible->text(QAccessible::Value), QStringLiteral("3400 K"));
    accessible->valueInterface()->setCurrentValue(4320);
    QCOMPARE(bench.take(), QStringLiteral("4300 + -"));
    accessible->valueInterface()->setCurrentValue(QStringLiteral("nan"));
    QCOMPARE(bench.take(), QString());
}

void TemperatureSliderTest::paintsTheEndsAndTheMiddle()
{
    QCOMPARE(Color::fromTemperature(1000), QColor::fromRgbF(1, 0.5, 0));
    QCOMPARE(Color::fromTemperature(500), Color::fromTemperature(1000));
    QCOMPARE(Color::fromTemperature(3750), QColor::fromRgbF(1, 1, 0.8F));
    QCOMPARE(Color::fromTemperature(2375), QColor::fromRgbF(1, 0.75, 0.4F));
    QCOMPARE(Color::fromTemperature(9000), QColor(Qt::white));
}

QTEST_MAIN(TemperatureSliderTest)
#include "TemperatureSlider.moc"
