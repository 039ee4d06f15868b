#include "ui/controls/HouseStyle.h"
#include "ui/controls/ProgressBar.h"
#include "ui/controls/Theme.h"

#include <QApplication>
#include <QTest>

using namespace ambertide;

class ProgressBars : public QObject
{
    Q_OBJECT

private:
    static constexpr int length = 200;

    HouseStyle *m_style = nullptr;

private Q_SLOTS:
    void initTestCase()
    {
        m_style = new HouseStyle;
        QApplication::setStyle(m_style);
    }

    void whatIsReachedStartsWhereReadingStarts_data()
    {
        QTest::addColumn<Qt::LayoutDirection>("direction");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("accentFrom"); // in logical pixels
        QTest::addColumn<int>("accentTo");
        QTest::newRow("left to right") << Qt::LeftToRight << 50 << 0 << 50;
        QTest::newRow("right to left") << Qt::RightToLeft << 50 << 150 << 200;
        QTest::newRow("nothing yet") << Qt::LeftToRight << 0 << 0 << 0;
        QTest::newRow("all") << Qt::LeftToRight << 200 << 0 << 200;
    }
    void whatIsReachedStartsWhereReadingStarts()
    {
        QFETCH(int, accentFrom);
        QFETCH(int, accentTo);
        QFETCH(Qt::LayoutDirection, direction);
        QFETCH(int, value);
        ProgressBar bar(QStringLiteral("Download"));
        bar.resize(length, bar.sizeHint().height());
        bar.setLayoutDirection(direction);
        bar.setRange(0, length);
        bar.setValue(value);
        const auto image = bar.grab().toImage();
        const auto theme = Theme::of(bar.palette());
        constexpr int roundEnd = 4;
        for (int x = roundEnd; x < length - roundEnd; ++x) {
            if (qAbs(x - accentFrom) < roundEnd || qAbs(x - accentTo) < roundEnd)
                continue;
            const QColor wanted = x > accentFrom && x < accentTo ? theme.accent : theme.track;
            QCOMPARE(image.pixelColor(x, image.height() / 2).name(), wanted.name());
        }
    }

    void workUnderWayShowsAsMotionUnlessItIsUnwanted()
    {
        ProgressBar bar(QStringLiteral("Download"));
        bar.resize(length, bar.sizeHint().height());
        bar.show();
        const auto moving = bar.grab().toImage();
        QTRY_VERIFY(bar.grab().toImage() != moving);
        bar.hide();
        m_style->setMotionReduced(true);
        bar.show();
        const auto still = bar.grab().toImage();
        const QString accent = Theme::of(bar.palette()).accent.name();
        // Dashes at both ends, which a moving piece never covers together.
        QCOMPARE(still.pixelColor(12, 3).name(), accent);
        QCOMPARE(still.pixelColor(180, 3).name(), accent);
    }
};

QTEST_MAIN(ProgressBars)
#include "ProgressBars.moc"
