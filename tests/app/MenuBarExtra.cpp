#include "app/MenuBarExtra.h"

#include "protocol/Notifications.h"
#include "support/ModelBench.h"
#include "ui/panel/PanelWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

struct FakeDesktop final : HapticPerformer, PanelPlacement
{
    bool isHeld = false;

    void performLevelChange() override {}
    Manner manner() const override { return Manner::Popup; }
    bool hasTransparency() const override { return true; }
    bool isButtonHeld() const override { return isHeld; }
    int cornerRadius() const override { return 12; }
    int gap() const override { return 4; }
    void anchor(QWindow &, const QMargins &, std::optional<QPoint>) override {}
};

struct FakeTrayIcon final : TrayIcon
{
    explicit FakeTrayIcon(Callbacks itsCallbacks) : callbacks(std::move(itsCallbacks)) {}

    Callbacks callbacks;
    Presence now = Presence::Shown;
    std::string menu;
    std::string toolTip;

    Presence presence() const override { return now; }
    void setMenu(std::vector<TrayMenuItem> items) override
    {
        for (const auto &item : items)
            menu.append(item.text).append(item.isEnabled ? "|" : " (disabled)|");
    }
    void setToolTip(std::string text) override { toolTip = text; }
};

} // namespace

class MenuBarExtraTest : public QObject
{
    Q_OBJECT

    struct Bench : ModelBench
    {
        Bench() : ModelBench(3400) {}

        SparkleUpdater updater{system.createUpdater, userDefaults};
        FakeDesktop desktop;
        bool hasOpenedSchedule = false;
        FakeTrayIcon *icon = nullptr;
        MenuBarExtra extra{{.viewModel = *model,
                            .updater = updater,
                            .executor = executor,
                            .haptics = desktop,
                            .placement = desktop,
                            .createTrayIcon = [this](auto callbacks) { return makeIcon(std::move(callbacks)); },
                            .openSettings = [] {},
                            .openSchedule = [this] { hasOpenedSchedule = true; },
                            .quit = [] {}}};

        std::unique_ptr<TrayIcon> makeIcon(TrayIcon::Callbacks callbacks)
        {
            icon = new FakeTrayIcon(std::move(callbacks));
            return std::unique_ptr<TrayIcon>(icon);
        }
        void tellPresence(TrayIcon::Presence presence)
        {
            icon->now = presence;
            icon->callbacks.presenceChanged();
            QCoreApplication::processEvents();
        }
        static QWidget *panel()
        {
            for (auto *each : QApplication::topLevelWidgets()) {
                if (qobject_cast<PanelWindow *>(each) != nullptr && each->isVisible())
                    return each;
            }
            return nullptr;
        }
        /// How often the displays are written within this time.
        std::size_t writesIn(std::chrono::nanoseconds duration)
        {
            executor.advance(duration);
            return displays.takeWrites().size();
        }
    };

private Q_SLOTS:
    void writesTheTintAgainWhenTheSystemMayHaveResetIt()
    {
        Bench bench;
        QCOMPARE(bench.icon->toolTip, "3400K (Halogen)");
        QCOMPARE(bench.icon->menu.c_str(), "Settings...|Check for Updates...||Quit Ambertide|");
        bench.extra.toggle({});
        QVERIFY(bench.writesIn(0s) > 0);
        const auto ofTheLoop = bench.writesIn(2s); // what counts is what comes on top of it
        QTest::keyClick(Bench::panel(), Qt::Key_Escape);
        QCOMPARE(bench.writesIn(499ms), 0U);
        QCOMPARE(bench.writesIn(2ms), 1U);
        QVERIFY(bench.writesIn(1400ms) <= ofTheLoop);
        QVERIFY(bench.writesIn(200ms) >= 1U);
        bench.writesIn(1s); // between two passes of the loop
        for (const auto &[state, writes] : {std::pair(Qt::ApplicationInactive, 0U), {Qt::ApplicationActive, 1U}}) {
            Q_EMIT qGuiApp->applicationStateChanged(state);
            QCOMPARE(bench.writesIn(0s), writes);
        }
        bench.model->setTemperature(6500);
        QCOMPARE(bench.icon->toolTip, "Normal (Daylight)");
        bench.writesIn(5s);
        Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
        QCOMPARE(bench.writesIn(0s), 0U);
    }

    void saysWhatKeepsTheDisplaysAsTheyAre()
    {
        Bench bench;
        bench.extra.toggle({});
        const auto shown = [](const char *text) -> QWidget * {
            for (auto *each : Bench::panel()->findChildren<QWidget *>()) {
                if (each->isVisible() && each->property("text").toString() == QLatin1String(text))
                    return each;
            }
            return nullptr;
        };
        const char *refusal = "None of the displays here can be tinted.";
        bench.displays.tintRefusal = {TintRefusal::Reason::Displays, "no tables"};
        bench.notifications.post(notifications::withoutUserInfo(notifications::checkScheduleNow));
        QVERIFY(shown(refusal) && bench.icon->toolTip == refusal);
        bench.distributed.post(notifications::withoutUserInfo(notifications::getTemperature), Delivery::standard);
        QVERIFY(bench.distributed.posts.back().first.userInfo->at("refusal") == UserInfoValue("no tables"));
        bench.displays.tintRefusal.reset();
        bench.notifications.post(notifications::withoutUserInfo(notifications::checkScheduleNow));
        QVERIFY(!shown(refusal) && bench.icon->toolTip == "3400K (Halogen)");

        const char *link = "Nothing is scheduled yet...";
        QVERIFY(!shown(link));
        bench.model->setScheduleEnabled(true);
        qobject_cast<QAbstractButton *>(shown(link))->click();
        QVERIFY(bench.hasOpenedSchedule && Bench::panel() == nullptr);
    }

    void opensAndClosesByTheSameIcon()
    {
        Bench bench;
        bench.extra.toggle({});
        QVERIFY(Bench::panel() != nullptr);
        bench.extra.toggle({});
        QVERIFY(Bench::panel() == nullptr);
        bench.desktop.isHeld = true; // that click is a slow one
        bench.executor.advance(1s);
        bench.desktop.isHeld = false;
        bench.executor.advance(100ms);
        bench.extra.toggle({}); // its release
        QVERIFY(Bench::panel() == nullptr);
        bench.executor.advance(1s);
        bench.extra.toggle({});
        QVERIFY(Bench::panel() != nullptr);
    }

    void isAWindowWhereThereIsNoTray()
    {
        using enum TrayIcon::Presence;
        Bench bench;
        bench.tellPresence(Pending);
        QVERIFY(Bench::panel() == nullptr);
        bench.tellPresence(Nowhere);
        const auto isExplained = [] {
            const auto labels = Bench::panel()->findChildren<QLabel *>();
            return std::ranges::any_of(labels, [](const auto *label) {
                return label->isVisible() && label->text().startsWith(QLatin1String("This desktop shows no tray"));
            });
        };
        QVERIFY(Bench::panel()->isVisible() && Bench::panel()->windowFlags().testFlag(Qt::WindowTitleHint));
        QVERIFY(isExplained());
        for (const auto *each : Bench::panel()->findChildren<QWidget *>())
            QVERIFY(!each->isVisible() || each->size().expandedTo(each->minimumSizeHint()) == each->size());
        bench.tellPresence(Shown);
        QVERIFY(!isExplained());
        Bench::panel()->close();
        bench.tellPresence(Pending);
        bench.tellPresence(Nowhere);
        QVERIFY(Bench::panel() == nullptr);
        bench.extra.show();
        QVERIFY(!isExplained());
        Bench::panel()->close();
        bench.tellPresence(Pending);
        bench.extra.show(); // waits
        QVERIFY(Bench::panel() == nullptr);
        bench.tellPresence(Shown);
        QVERIFY(!Bench::panel()->windowFlags().testFlag(Qt::WindowTitleHint));
        Bench::panel()->close();

        Bench shown;
        shown.tellPresence(Shown);
        shown.tellPresence(Nowhere); // as when the desktop's panel crashes
        QVERIFY(Bench::panel() == nullptr);
    }
};

QTEST_MAIN(MenuBarExtraTest)
#include "MenuBarExtra.moc"
