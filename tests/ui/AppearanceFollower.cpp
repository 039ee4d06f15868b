#include "ui/AppearanceFollower.h"

#include "ui/controls/Button.h"
#include "ui/controls/HouseStyle.h"

#include <QApplication>
#include <QTest>

using namespace ambertide;

class AppearanceFollowerTest : public QObject
{
    Q_OBJECT

    struct FakeAppearance final : Appearance
    {
        ColorScheme colorScheme() const override { return isChanged ? ColorScheme::Dark : ColorScheme::Light; }
        bool prefersHighContrast() const override { return false; }
        bool prefersReducedMotion() const override { return isChanged; }
        std::string changedFont() const override { return isChanged ? "Noto Sans, Bold 17.5" : ""; }
        double textFactor() const override { return 1; }
        Observation observe(std::function<void()> observer) override
        {
            return changed = std::move(observer), Observation();
        }
        bool isChanged = false;
        std::function<void()> changed;
    };

private Q_SLOTS:
    void everyInkIsReadableOnWhatItStandsOn()
    {
        QPalette blueDesktop{QColor("#002b36")};
        blueDesktop.setColor(QPalette::WindowText, QColor("#eee8d5"));
        QPalette greyDesktop{QColor("#c0c0c0")};
        greyDesktop.setColor(QPalette::WindowText, Qt::black);
        for (const auto &palette : {housePalette(false, false), housePalette(true, false), housePalette(false, true),
                                    housePalette(true, true), blueDesktop, greyDesktop}) {
            const auto theme = Theme::of(palette);
            const auto check = [](double contrast, const QList<QColor> &inks, const QList<QColor> &surfaces) {
                for (const auto &ink : inks) {
                    for (const auto &surface : surfaces)
                        QVERIFY2(contrastRatio(ink, surface) >= contrast, qPrintable(ink.name() + surface.name()));
                }
            };
            check(4.5, {theme.secondaryText, theme.accentText, theme.redText, theme.orangeText, theme.blueText},
                  theme.surfaces());
            check(4.5, {theme.onAccent}, {theme.accent});
            check(3, {theme.accent, theme.red, theme.trackOutline}, theme.surfaces() + QList{theme.hoveredTwice()});
            check(3, {theme.green}, {theme.card, blended(theme.hover, theme.card), Qt::white});
        }
    }

    void everythingFollowsTheSystemThoughAPluginReplacesTheStyle()
    {
        FakeAppearance appearance;
        const AppearanceFollower follower(appearance);
        QWidget window;
        auto *label = new TextLabel(QStringLiteral("words"), TextStyle::Body, &Theme::secondaryText);
        auto *button = new Button(QStringLiteral("words"));
        label->setParent(&window);
        button->setParent(&window);
        window.show();
        const int formerWidth = button->sizeHint().width();

        QApplication::setStyle(QStringLiteral("Fusion"));
        appearance.isChanged = true;
        appearance.changed();
        QCoreApplication::processEvents();
        auto *style = qobject_cast<HouseStyle *>(QApplication::style());
        QVERIFY(style != nullptr);
        QCOMPARE(style->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, nullptr, nullptr), 0);
        const auto font = QApplication::font();
        QVERIFY(font.family() == QStringLiteral("Noto Sans") && font.bold() && font.pointSizeF() == 17.5);
        QTRY_COMPARE(label->palette().color(QPalette::WindowText), Theme::of(housePalette(true, false)).secondaryText);
        QCOMPARE(label->font(), textFont(TextStyle::Body));
        QVERIFY(button->sizeHint().width() > formerWidth);
    }
};

QTEST_MAIN(AppearanceFollowerTest)
#include "AppearanceFollower.moc"
