#include "integration/CLIInstaller.h"
#include "integration/LaunchHelper.h"
#include "ports/PrivilegedRunner.h"
#include "support/CapturedConsole.h"
#include "support/Fakes.h"
#include "support/ModelBench.h"
#include "ui/controls/HouseStyle.h"
#include "ui/controls/Page.h"
#include "ui/controls/Sheet.h"
#include "ui/controls/TimeField.h"
#include "ui/settings/ScheduleEntryRow.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>
#include <QPointer>
#include <QScrollBar>
#include <QSlider>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fstream>

using namespace ambertide;

namespace {

struct FakePrivilegedRunner final : PrivilegedRunner
{
    PrivilegedResult run(const std::string &) override { return result; }
    void cancel() override {}
    PrivilegedResult result;
};

struct FakeLoginItem final : LoginItem
{
    LoginItemStatus status() const override { return LoginItemStatus::NotRegistered; }
    std::optional<std::string> registerItem() override { return calls += "on ", std::nullopt; }
    std::optional<std::string> unregisterItem() override { return calls += "off ", std::nullopt; }
    std::string calls;
};

struct FakeUpdaterController final : UpdaterController
{
    explicit FakeUpdaterController(std::string &record) : calls(record) {}
    void setAutomaticallyChecksForUpdates(bool isOn) override { calls += isOn ? "on " : "off "; }
    void setUpdateCheckInterval(double) override {}
    void checkForUpdates() override { calls += "check "; }
    bool canCheckForUpdates() const override { return true; }
    std::string &calls;
};

/// An open Settings window with everything that it works on.
struct Bench : ModelBench
{
    QTemporaryDir folder;
    FakeTaskExecutor installerExecutor;
    FakePrivilegedRunner runner;
    FakeLoginItem loginItem;
    std::string updaterCalls;
    CapturedConsole console;
    FakeMainBundle bundle = FakeMainBundle(folder.path().toStdString());
    std::filesystem::path link = bundle.bundlePath / "link";
    CLIInstaller installer = CLIInstaller(bundle, runner, link);
    LaunchHelper launchHelper = LaunchHelper(loginItem);
    QPointer<SettingsView> window;

    Bench() : ModelBench(AppViewModel::neutralTemperature)
    {
        const auto tool = bundle.bundlePath / "Contents/MacOS/AmbertideCLI";
        std::filesystem::create_directories(tool.parent_path());
        std::ofstream(tool) << "tool";
    }
    ~Bench() { delete window; }

    void open()
    {
        window = new SettingsView(*model, {installer, launchHelper, bundle,
                                           [this] { return std::make_unique<FakeUpdaterController>(updaterCalls); },
                                           userDefaults, notifications, calendar, loginItem, installerExecutor});
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    void openSchedule(const std::vector<ScheduleEntry> &entries)
    {
        userDefaults.setData(defaults::scheduleEntries, encodeSchedule(entries));
        open();
        tabs()->setCurrentIndex(1);
        QCoreApplication::processEvents();
    }
    void close()
    {
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QTabBar *tabs() const { return window->findChild<QTabBar *>(); }
    /// The first that can be seen with this text or name.
    QAbstractButton *button(const char *text) const
    {
        for (auto *each : window->findChildren<QAbstractButton *>()) {
            if (each->isVisible() && (each->text() + each->accessibleName()) == QLatin1String(text))
                return each;
        }
        qFatal("no button %s", text);
    }
    bool hasLabel(const char *text) const
    {
        const auto labels = window->findChildren<QLabel *>();
        return std::ranges::any_of(
            labels, [&](const QLabel *label) { return label->isVisible() && label->text() == QLatin1String(text); });
    }
    Sheet *sheet() const
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return window->findChild<Sheet *>();
    }
    /// What a screen reader says of the rows.
    QString rows() const
    {
        QStringList names;
        for (const auto *row : window->findChildren<ScheduleEntryRow *>()) {
            if (!row->isHidden())
                names.append(row->accessibleName());
        }
        return names.join(u'|');
    }
};

ScheduleEntry entry(int hour, bool isEnabled = true)
{
    return {.time = FakeCalendar::at(hour, 0), .temperature = 3400, .isEnabled = isEnabled};
}

void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

} // namespace

class SettingsWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new HouseStyle); }

    void growsForLargeTextAlone()
    {
        const QFont font = QApplication::font();
        Bench bench;
        bench.open();
        QCOMPARE(bench.window->width(), 600);
        QVERIFY(bench.window->height() >= 300);
        QFont larger = font;
        larger.setPointSize(32);
        bench.close();
        QApplication::setFont(larger);
        bench.open();
        for (const auto *control : bench.window->findChildren<QWidget *>()) {
            const int left = control->mapTo(bench.window, QPoint()).x();
            QVERIFY(!control->isVisible() || (left >= 0 && left + control->width() <= bench.window->width()));
        }
        QApplication::setFont(font);
    }

    void tellsWhatTheBundleSays()
    {
        Bench bench;
        bench.bundle.values["AmbertideWebPage"] = "https://ambertide.example/";
        bench.bundle.values["CFBundleVersion"] = "45";
        bench.open();
        QVERIFY(bench.hasLabel("Version Unknown (45)") && bench.button("Web page")->isEnabled());
        bench.close();
        bench.bundle.values = {{"CFBundleShortVersionString", "1.2"}, {"AmbertideWebPage", "file:///etc/passwd"}};
        bench.open();
        QVERIFY(bench.hasLabel("Version 1.2") && !bench.button("Web page")->isEnabled());
    }

    void theSwitchesReachTheSystem()
    {
        Bench bench;
        bench.userDefaults.setBool("Ambertide.AutoUpdate", true);
        bench.openSchedule({entry(8)});
        auto *schedule = bench.button("Enable Schedule");
        schedule->click();
        QVERIFY(bench.model->scheduleEnabled());
        bench.model->handleManualChange(); // and by the panel
        QVERIFY(!schedule->isChecked());
        QCOMPARE(std::ranges::count_if(bench.console.lines, [](const auto &line) { return line.ends_with("false"); }),
                 1);
        bench.tabs()->setCurrentIndex(0);
        for (int round = 0; round < 2; ++round) {
            bench.button("Start at login")->click();
            QTest::keyClick(bench.button("Automatically check for updates"), Qt::Key_Return);
            QCOMPARE(bench.userDefaults.boolValue("Ambertide.AutoUpdate"), round == 1);
        }
        bench.button("Check for Updates...")->click();
        QCOMPARE(bench.loginItem.calls, "on off ");
        QCOMPARE(bench.updaterCalls, "on off on check ");
    }

    void installsAndRemovesTheTool_data()
    {
        QTest::addColumn<bool>("wasInstalled");
        QTest::addColumn<bool>("succeeds");
        QTest::newRow("installed") << false << true;
        QTest::newRow("removed") << true << true;
        QTest::newRow("not installed") << false << false;
    }
    void installsAndRemovesTheTool()
    {
        QFETCH(bool, wasInstalled);
        QFETCH(bool, succeeds);
        Bench bench;
        if (wasInstalled)
            std::ofstream(bench.link) << "tool";
        if (!succeeds)
            bench.runner.result = {PrivilegedResult::Status::Failed, "no"};
        bench.open();
        auto *tool = bench.button(wasInstalled ? "Uninstall" : "Install");
        tool->setFocus();
        tool->click();
        QVERIFY(!bench.button("Start at login")->isEnabled() && !bench.button("Check for Updates...")->isEnabled());
        QVERIFY(tool->isHidden() && !tool->hasFocus());

        bench.installerExecutor.runReady();
        QCOMPARE(bench.sheet() != nullptr, !succeeds);
        if (!succeeds) {
            QCOMPARE(bench.sheet()->accessibleName(),
                     QStringLiteral("CLI Installation\nFailed to install the CLI tool: no"));
            press(Qt::Key_Return);
            QVERIFY(bench.sheet() == nullptr);
        }
        const bool isInstalled = wasInstalled != succeeds;
        QCOMPARE(bench.hasLabel("Usage:"), isInstalled);
        QCOMPARE(tool->text(), QLatin1String(isInstalled ? "Uninstall" : "Install"));
        QVERIFY(tool->isEnabled() && tool->hasFocus());
    }

    void isKeptOutOfSightWhileTheToolIsInstalled()
    {
        Bench bench;
        bench.open();
        bench.button("Install")->click();
        bench.tabs()->setCurrentIndex(1);
        bench.close();
        QVERIFY(bench.window != nullptr && !bench.window->isVisible());
        bench.window->show();
        QCOMPARE(bench.tabs()->currentIndex(), 0);
        bench.close();
        bench.installerExecutor.runReady();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(bench.window.isNull());

        bench.open();
        bench.button("Install")->click();
        delete bench.window;
        bench.installerExecutor.runReady(); // finds nobody
    }

    void theEditorOpensOnTheLastEntryAndSavesOnRequestAlone_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("saved") << Qt::Key_Space;
        QTest::newRow("saved by Return") << Qt::Key_Return;
        QTest::newRow("dismissed") << Qt::Key_Escape;
    }
    void theEditorOpensOnTheLastEntryAndSavesOnRequestAlone()
    {
        QFETCH(Qt::Key, key);
        Bench bench;
        bench.openSchedule({entry(8), entry(22)});
        bench.button("Add Schedule Entry")->click();
        QCoreApplication::processEvents();
        const auto added = QStringLiteral("8:00 AM, 3400K|12:00 PM, 3800K|10:00 PM, 3400K, active");
        QCOMPARE(bench.rows(), added);
        QCOMPARE(bench.sheet()->findChild<Page *>()->size(), QSize(400, 300));
        auto *time = bench.window->findChild<TimeField *>();
        QCOMPARE(time->time(), QTime(22, 0));
        time->setTime(QTime(7, 30));
        bench.sheet()->findChild<QSlider *>()->setValue(2049);
        bench.button("Enabled")->click();
        if (key == Qt::Key_Space)
            bench.button("Save")->setFocus();
        press(key);
        QCOMPARE(bench.rows(), added); // also when saved: that is left to the event loop
        QCoreApplication::processEvents();
        QVERIFY(bench.sheet() == nullptr);
        const auto edited = QStringLiteral("7:30 AM, 2000K, disabled|8:00 AM, 3400K|12:00 PM, 3800K, active");
        QCOMPARE(bench.rows(), key == Qt::Key_Escape ? added : edited);
    }

    void aRowIsEditedAndDeletedByMouseAndKeyboard()
    {
        Bench bench;
        bench.openSchedule({entry(6), entry(7), entry(8)});
        auto *row = bench.window->findChild<ScheduleEntryRow *>();
        for (int way = 0; way < 3; ++way) {
            row->setFocus();
            if (way == 0)
                QTest::mouseClick(bench.button("Edit 6:00 AM"), Qt::LeftButton);
            else if (way == 1)
                QTest::mouseClick(row, Qt::LeftButton, {}, {100, 20});
            else
                press(Qt::Key_Return);
            QCOMPARE(bench.window->findChildren<Sheet *>().size(), 1);
            press(Qt::Key_Escape);
            QVERIFY(bench.sheet() == nullptr && (way == 0 || row->hasFocus()));
        }
        press(Qt::Key_Delete);
        QVERIFY(row->hasFocus());
        QCOMPARE(bench.rows(), QStringLiteral("7:00 AM, 3400K|8:00 AM, 3400K, active"));
        press(Qt::Key_Down);
        press(Qt::Key_Backspace);
        QVERIFY(row->hasFocus());
        QTest::mouseClick(bench.button("Delete 7:00 AM"), Qt::LeftButton);
        QCOMPARE(bench.rows(), QString());
        QVERIFY(bench.hasLabel("No schedule entries. Add one to get started."));
    }

    void theMarkFollowsTheClockWhileItCanBeSeen()
    {
        Bench bench;
        bench.calendar.current = FakeCalendar::at(6, 59);
        bench.openSchedule({entry(7), entry(8, false), entry(21)});
        QVERIFY(bench.rows().endsWith(QLatin1String("9:00 PM, 3400K, active")));
        const auto timers = bench.window->findChildren<QTimer *>();
        const auto minute = std::ranges::find(timers, 60'000, &QTimer::interval);
        QVERIFY(minute != timers.end() && (*minute)->isActive());
        bench.calendar.current = FakeCalendar::at(20, 59);
        QMetaObject::invokeMethod(*minute, "timeout");
        QCOMPARE(bench.rows(), QStringLiteral("7:00 AM, 3400K, active|8:00 AM, 3400K, disabled|9:00 PM, 3400K"));
        bench.tabs()->setCurrentIndex(0);
        QVERIFY(!(*minute)->isActive());
    }

    void aLongScheduleOpensAtOnceAndIsScrolledToItsEnd()
    {
        Bench bench;
        bench.openSchedule(std::vector<ScheduleEntry>(300, entry(6)));
        QVERIFY(bench.window->height() <= bench.window->screen()->availableGeometry().height());
        const auto count = [&] { return bench.window->findChildren<ScheduleEntryRow *>().size(); };
        QVERIFY(count() < 100);
        auto *bar = bench.window->findChildren<Page *>().last()->verticalScrollBar();
        for (int round = 0; round < 50 && count() < 300; ++round) {
            bar->setValue(bar->maximum());
            QCoreApplication::processEvents();
        }
        QCOMPARE(count(), 300);
    }
};

QTEST_MAIN(SettingsWindow)
#include "SettingsWindow.moc"
