#include "ui/AppearanceFollower.h"

#include "ui/controls/HouseStyle.h"

#include <QApplication>
#include <QTest>

using namespace ambertide;

class AppearanceFollowerTest : public QObject
{
    Q_OBJECT

    struct FakeAppearance final : Appearance
    {
        ColorScheme colorScheme() const override { return ColorScheme::NoPreference; }
        bool prefersHighContrast() const override { return false; }
        bool prefersReducedMotion() const override { return isMotionReduced; }
        Observation observe(std::function<void()> observer) override
        {
            return changed = std::move(observer), Observation();
        }
        bool isMotionReduced = false;
        std::function<void()> changed;
    };

private Q_SLOTS:
    void bringsTheHouseStyleBackWhenAPluginReplacesIt()
    {
        FakeAppearance appearance;
        const AppearanceFollower follower(appearance);
        QApplication::setStyle(QStringLiteral("Fusion"));
        appearance.isMotionReduced = true;
        appearance.changed();
        QCoreApplication::processEvents();
        auto *style = qobject_cast<HouseStyle *>(QApplication::style());
        QVERIFY(style != nullptr);
        QCOMPARE(style->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, nullptr, nullptr), 0);
    }
};

QTEST_MAIN(AppearanceFollowerTest)
#include "AppearanceFollower.moc"
