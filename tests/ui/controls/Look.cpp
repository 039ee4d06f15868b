#include "ui/controls/Button.h"
#include "ui/controls/HouseStyle.h"
#include "ui/controls/ProgressBar.h"

#include <QApplication>
#include <QTest>

using namespace ambertide;

class Look : public QObject
{
    Q_OBJECT

private:
    HouseStyle *m_style = nullptr;

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(m_style = new HouseStyle); }

    void everyInkIsReadableOnWhatItStandsOn()
    {
        QPalette blueDesktop{QColor("#002b36")};
        blueDesktop.setColor(QPalette::WindowText, QColor("#eee8d5"));
        QPalette greyDesktop{QColor("#c0c0c0")};
        greyDesktop.setColor(QPalette::WindowText, Qt::black);
        for (const auto &palette : {housePalette(false, false), housePalette(true, false), housePalette(false, true),
                                    housePalette(true, true), blueDesktop, greyDesktop}) {
            const auto theme = Theme::of(palette);
            const auto check = [](const QColor &ink, const QColor &surface) {
                QVERIFY2(contrastRatio(ink, surface) >= 4.5, qPrintable(ink.name() + surface.name()));
            };
            for (const auto &surface : {theme.window, theme.panel, theme.card}) {
                for (const auto &ink :
                     {theme.secondaryText, theme.accent, theme.green, theme.orange, theme.red, theme.blue})
                    check(ink, surface);
                check(theme.accentOnHover, blended(theme.hover, surface));
            }
            check(theme.onAccent, theme.accent);
        }
    }

    void controlsFollowTheFontAndThePaletteOfTheApplication()
    {
        QApplication::setPalette(housePalette(false, false));
        QWidget window;
        auto *label = new TextLabel(QStringLiteral("words"), TextStyle::Body, &Theme::secondaryText);
        auto *button = new Button(QStringLiteral("words"));
        label->setParent(&window);
        button->setParent(&window);
        window.show();
        const int formerWidth = button->sizeHint().width();

        QFont large = QApplication::font();
        large.setPointSize(20);
        QApplication::setFont(large);
        QApplication::setPalette(housePalette(true, false));
        QCoreApplication::processEvents();
        QCOMPARE(label->palette().color(QPalette::WindowText), Theme::of(housePalette(true, false)).secondaryText);
        QCOMPARE(label->font(), textFont(TextStyle::Body));
        QVERIFY(button->sizeHint().width() > formerWidth);
    }

    void whatIsReachedStartsWhereReadingStarts()
    {
        ProgressBar bar(QStringLiteral("Download"));
        bar.resize(200, bar.height());
        bar.setRange(0, 100);
        bar.setValue(25);
        const auto ink = [&](int x) { return bar.grab().toImage().pixelColor(x, 3).rgb(); };
        const auto theme = Theme::of(bar.palette());
        QVERIFY(ink(6) == theme.accent.rgb() && ink(44) == theme.accent.rgb() && ink(56) == theme.track.rgb());
        bar.setLayoutDirection(Qt::RightToLeft);
        QVERIFY(ink(193) == theme.accent.rgb() && ink(143) == theme.track.rgb());
    }

    void workUnderWayShowsAsMotionUnlessItIsUnwanted()
    {
        ProgressBar bar(QStringLiteral("Download"));
        bar.resize(200, bar.height());
        bar.show();
        const auto moving = bar.grab().toImage();
        QTRY_VERIFY(bar.grab().toImage() != moving);
        m_style->setMotionReduced(true);
        const auto still = bar.grab().toImage();
        // Dashes at both ends, which a moving piece never covers together.
        for (const int x : {12, 180})
            QCOMPARE(still.pixelColor(x, 3).rgb(), Theme::of(bar.palette()).accent.rgb());
    }
};

QTEST_MAIN(Look)
#include "Look.moc"
