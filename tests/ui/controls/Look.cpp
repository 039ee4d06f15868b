#include "ui/controls/Button.h"
#include "ui/controls/HouseStyle.h"

#include <QApplication>
#include <QTest>
#include <QVBoxLayout>

using namespace ambertide;

class Look : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyInkIsReadableOnWhatItStandsOn_data()
    {
        QTest::addColumn<QPalette>("palette");
        QTest::newRow("light") << housePalette(false, false);
        QTest::newRow("dark") << housePalette(true, false);
        QTest::newRow("light, high contrast") << housePalette(false, true);
        QTest::newRow("dark, high contrast") << housePalette(true, true);
        const auto desktop = [](const char *window, const char *text) {
            QPalette palette{QColor(window)};
            palette.setColor(QPalette::WindowText, QColor(text));
            return palette;
        };
        QTest::newRow("a beige desktop") << desktop("#eee8d5", "#073642");
        QTest::newRow("a blue desktop") << desktop("#002b36", "#eee8d5");
        QTest::newRow("a grey desktop") << desktop("#c0c0c0", "#000000");
    }
    void everyInkIsReadableOnWhatItStandsOn()
    {
        QFETCH(QPalette, palette);
        const auto theme = Theme::of(palette);
        const std::vector<std::pair<const char *, QColor>> inks = {{"secondary text", theme.secondaryText},
                                                                   {"accent", theme.accent},
                                                                   {"green", theme.green},
                                                                   {"orange", theme.orange},
                                                                   {"red", theme.red},
                                                                   {"blue", theme.blue}};
        const auto check = [](const char *name, const QColor &ink, const QColor &surface) {
            QVERIFY2(contrastRatio(ink, surface) >= 4.5,
                     qPrintable(QStringLiteral("%1: %2 on %3").arg(QLatin1String(name), ink.name(), surface.name())));
        };
        for (const auto &surface : {theme.window, theme.panel, theme.card}) {
            for (const auto &[name, ink] : inks)
                check(name, ink, surface);
            check("hovered accent", theme.accentOnHover, blended(theme.hover, surface));
        }
        check("text on the accent", theme.onAccent, theme.accent);
    }

    void controlsFollowTheFontAndThePaletteOfTheApplication()
    {
        QApplication::setStyle(new HouseStyle);
        QApplication::setPalette(housePalette(false, false));
        QWidget window;
        auto *column = new QVBoxLayout(&window);
        auto *label = new TextLabel(QStringLiteral("words"), TextStyle::Body, &Theme::secondaryText);
        auto *button = new Button(QStringLiteral("words"));
        column->addWidget(label);
        column->addWidget(button);
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
};

QTEST_MAIN(Look)
#include "Look.moc"
