#include "integration/CLIInstaller.h"
#include "integration/LaunchHelper.h"
#include "ports/PrivilegedRunner.h"
#include "support/CapturedConsole.h"
#include "support/FakeMainBundle.h"
#include "support/ModelBench.h"
#include "ui/controls/Button.h"
#include "ui/controls/Page.h"
#include "ui/controls/Sheet.h"
#include "ui/controls/SwitchRow.h"
#include "ui/controls/TimeField.h"
#include "ui/controls/ValueSlider.h"
#include "ui/settings/ScheduleEntryRow.h"
#include "ui/settings/SettingsView.h"

#include <QDesktopServices>
#include <QLabel>
#include <QPointer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fstream>

using namespace ambertide;
namespace fs = std::filesystem;

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
    fs::path link = bundle.bundlePath / "link";
    CLIInstaller installer = CLIInstaller(bundle, runner, link);
    LaunchHelper launchHelper = LaunchHelper(loginItem);
    QPointer<SettingsView> window;

    Bench() : ModelBench(AppViewModel::neutralTemperature)
    {
        const auto tool = bundle.bundlePath / "Contents/MacOS/AmbertideCLI";
        fs::create_directories(tool.parent_path());
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
        window->findChild<QTabBar *>()->setCurrentIndex(1);
        QCoreApplication::processEvents();
    }
    void close()
    {
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// The first that can be seen with this text or name.
    QAbstractButton *button(const QString &text) const
    {
        for (auto *candidate : window->findChildren<QAbstractButton *>()) {
            if (candidate->isVisible() && (candidate->text() == text || candidate->accessibleName() == text))
                return candidate;
        }
        qFatal("no button %s", qPrintable(text));
    }
    QStringList labels() const
    {
        QStringList texts;
        for (const auto *label : window->findChildren<QLabel *>()) {
            if (label->isVisible())
                texts.append(label->text());
        }
        return texts;
    }
    Sheet *sheet() const
    {
        for (auto *sheet : window->findChildren<Sheet *>()) {
            if (sheet->isVisible())
                return sheet;
        }
        return nullptr;
    }
    /// What a screen reader says of each row.
    QStringList rows() const
    {
        QStringList names;
        for (const auto *row : window->findChildren<ScheduleEntryRow *>()) {
            if (!row->isHidden())
                names.append(row->accessibleName());
        }
        return names;
    }
};

ScheduleEntry entry(int hour, double temperature = 3400, bool isEnabled = true)
{
    return {.time = FakeCalendar::at(hour, 0), .temperature = temperature, .isEnabled = isEnabled};
}

} // namespace

class SettingsWindow : public QObject
{
    Q_OBJECT

public:
    QUrl opened;
    Q_INVOKABLE void open(const QUrl &url) { opened = url; }

private Q_SLOTS:
    void opensOnGeneralEachTimeAndIsReachedInReadingOrder()
    {
        Bench bench;
        bench.bundle.values["AmbertideWebPage"] = "https://ambertide.example/";
        bench.openSchedule({entry(6), entry(22)});
        const auto reached = [&](int count) {
            bench.window->findChild<QTabBar *>()->setFocus();
            QStringList names;
            for (int press = 0; press < count; ++press) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                const auto *button = qobject_cast<QAbstractButton *>(QApplication::focusWidget());
                names.append(button != nullptr ? button->text() + button->accessibleName() : QString());
            }
            return names.join(u'|');
        };
        QCOMPARE(reached(8), QStringLiteral("Enable Schedule|6:00 AM, 3400K|Edit 6:00 AM|Delete 6:00 AM|"
                                            "10:00 PM, 3400K, active|Edit 10:00 PM|Delete 10:00 PM|"
                                            "Add Schedule Entry"));
        bench.close();
        QVERIFY(bench.window.isNull());
        bench.open();
        QCOMPARE(bench.window->findChild<QTabBar *>()->currentIndex(), 0);
        QCOMPARE(reached(5), QStringLiteral("Web page|Check for Updates...|Start at login|"
                                            "Automatically check for updates|Install"));
        QCOMPARE(bench.window->width(), 600);
        QVERIFY(bench.window->height() >= 300);
    }

    void nothingIsCutAtLargeText()
    {
        const QFont font = QApplication::font();
        QFont larger = font;
        larger.setPointSize(32);
        QApplication::setFont(larger);
        Bench bench;
        bench.open();
        for (const auto *control : bench.window->findChildren<QWidget *>()) {
            const int left = control->mapTo(bench.window, QPoint()).x();
            QVERIFY(!control->isVisible() || (left >= 0 && left + control->width() <= bench.window->width()));
        }
        QApplication::setFont(font);
    }

    void tellsWhatTheBundleSays_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("build");
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("isPageOpened");
        QTest::newRow("all") << "1.2"
                             << "45"
                             << "https://ambertide.example/"
                             << "Version 1.2 (45)" << true;
        QTest::newRow("no build") << "1.2"
                                  << ""
                                  << "http://ambertide.example/"
                                  << "Version 1.2" << false;
        QTest::newRow("no version") << ""
                                    << "45"
                                    << "file:///etc/passwd"
                                    << "Version Unknown (45)" << false;
        QTest::newRow("nothing") << ""
                                 << ""
                                 << "https:"
                                 << "Version Unknown" << false;
    }
    void tellsWhatTheBundleSays()
    {
        QFETCH(QString, version);
        QFETCH(QString, build);
        QFETCH(QString, page);
        Bench bench;
        if (!version.isEmpty())
            bench.bundle.values["CFBundleShortVersionString"] = version.toStdString();
        if (!build.isEmpty())
            bench.bundle.values["CFBundleVersion"] = build.toStdString();
        bench.bundle.values["AmbertideWebPage"] = page.toStdString();
        bench.open();
        QTEST(bench.labels().filter(QStringLiteral("Version")).value(0), "line");
        opened.clear();
        for (const auto &scheme : {"https", "http", "file"})
            QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), this, "open");
        bench.button(QStringLiteral("Web page"))->click();
        for (const auto &scheme : {"https", "http", "file"})
            QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
        QTEST(!opened.isEmpty(), "isPageOpened");
    }

    void theSwitchesReachTheSystem()
    {
        Bench bench;
        bench.open();
        auto *updates = bench.button(QStringLiteral("Automatically check for updates"));
        for (int press = 0; press < 2; ++press) {
            bench.button(QStringLiteral("Start at login"))->click();
            QTest::keyClick(updates, Qt::Key_Return);
        }
        bench.button(QStringLiteral("Check for Updates..."))->click();
        QCOMPARE(bench.loginItem.calls, "on off ");
        QCOMPARE(bench.updaterCalls, "off on off check ");
        QVERIFY(bench.userDefaults.hasObject("Ambertide.AutoUpdate"));
    }

    void installsAndRemovesTheTool_data()
    {
        QTest::addColumn<bool>("wasInstalled");
        QTest::addColumn<QString>("failure");
        QTest::addColumn<QString>("buttonAfterwards");
        QTest::newRow("installed") << false << ""
                                   << "Uninstall";
        QTest::newRow("removed") << true << ""
                                 << "Install";
        QTest::newRow("not installed") << false << "Failed to install the CLI tool: no"
                                       << "Install";
        QTest::newRow("not removed") << true << "Failed to uninstall the CLI tool: no"
                                     << "Uninstall";
    }
    void installsAndRemovesTheTool()
    {
        QFETCH(bool, wasInstalled);
        QFETCH(QString, failure);
        QFETCH(QString, buttonAfterwards);
        Bench bench;
        if (wasInstalled)
            std::ofstream(bench.link) << "tool";
        if (!failure.isEmpty())
            bench.runner.result = {PrivilegedResult::Status::Failed, "no"};
        bench.open();
        bench.button(wasInstalled ? QStringLiteral("Uninstall") : QStringLiteral("Install"))->click();
        QVERIFY(!bench.button(QStringLiteral("Start at login"))->isEnabled());
        QVERIFY(!bench.button(QStringLiteral("Check for Updates..."))->isEnabled());

        bench.installerExecutor.runReady();
        QVERIFY(bench.button(QStringLiteral("Start at login"))->isEnabled());
        QCOMPARE(bench.labels().contains(QStringLiteral("Usage:")), buttonAfterwards == QLatin1String("Uninstall"));
        QCOMPARE(bench.sheet() != nullptr, !failure.isEmpty());
        if (!failure.isEmpty()) {
            QVERIFY(bench.labels().contains(QStringLiteral("CLI Installation")));
            QVERIFY(bench.sheet()->accessibleName().contains(failure));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QVERIFY(bench.sheet() == nullptr);
        }
        QVERIFY(bench.button(buttonAfterwards)->isEnabled());
    }

    void isKeptOutOfSightWhileTheToolIsInstalled()
    {
        Bench bench;
        bench.open();
        bench.button(QStringLiteral("Install"))->click();
        bench.close();
        QVERIFY(bench.window != nullptr && !bench.window->isVisible());
        bench.installerExecutor.runReady();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(bench.window.isNull());
    }

    void maySimplyEndWhileTheToolIsInstalled()
    {
        Bench bench;
        bench.open();
        bench.button(QStringLiteral("Install"))->click();
        delete bench.window;
        bench.installerExecutor.runReady();
    }

    void theEditorOpensOnTheLastEntryAndSavesOnRequestAlone_data()
    {
        QTest::addColumn<bool>("isSaved");
        QTest::addColumn<QString>("press");
        QTest::newRow("saved") << true << "Save";
        QTest::newRow("saved by Return") << true << "";
        QTest::newRow("cancelled") << false << "Cancel";
        QTest::newRow("dismissed by Escape") << false << "";
    }
    void theEditorOpensOnTheLastEntryAndSavesOnRequestAlone()
    {
        QFETCH(bool, isSaved);
        QFETCH(QString, press);
        Bench bench;
        bench.openSchedule({entry(8), entry(22)});
        bench.button(QStringLiteral("Add Schedule Entry"))->click();
        QCoreApplication::processEvents();
        const QStringList added = {QStringLiteral("8:00 AM, 3400K"), QStringLiteral("12:00 PM, 3800K"),
                                   QStringLiteral("10:00 PM, 3400K, active")};
        QCOMPARE(bench.rows(), added);

        QVERIFY(bench.sheet() != nullptr);
        auto *time = bench.window->findChild<TimeField *>();
        QCOMPARE(time->time(), QTime(22, 0));
        time->setTime(QTime(7, 30));
        bench.window->findChild<ValueSlider *>()->setValue(2049);
        bench.button(QStringLiteral("Enabled"))->click();
        if (press.isEmpty())
            QTest::keyClick(QApplication::focusWidget(), isSaved ? Qt::Key_Return : Qt::Key_Escape);
        else
            bench.button(press)->click();
        QCOMPARE(bench.rows(), added); // also when saved: that is left to the event loop
        QCoreApplication::processEvents();
        QVERIFY(bench.sheet() == nullptr);
        const QStringList edited = {QStringLiteral("7:30 AM, 2000K, disabled"), QStringLiteral("8:00 AM, 3400K"),
                                    QStringLiteral("12:00 PM, 3800K, active")};
        QCOMPARE(bench.rows(), isSaved ? edited : added);
    }

    void aRowIsEditedAndDeletedByMouseAndKeyboard()
    {
        Bench bench;
        bench.openSchedule({entry(6), entry(7), entry(8)});
        auto *row = bench.window->findChild<ScheduleEntryRow *>();
        QSignalSpy edits(row, &ScheduleEntryRow::editRequested);
        QTest::mouseClick(bench.button(QStringLiteral("Edit 6:00 AM")), Qt::LeftButton);
        QCOMPARE(edits.count(), 1);
        QTest::keyClick(bench.sheet(), Qt::Key_Escape);
        QTest::mouseClick(row, Qt::LeftButton, {}, {100, 20});
        QCOMPARE(edits.count(), 2);
        QTest::keyClick(bench.sheet(), Qt::Key_Escape);
        QVERIFY(row->hasFocus());
        for (const auto key : {Qt::Key_Return, Qt::Key_Space}) {
            QTest::keyClick(row, key);
            QVERIFY(bench.sheet() != nullptr);
            QTest::keyClick(bench.sheet(), Qt::Key_Escape);
        }

        QTest::keyClick(row, Qt::Key_Delete);
        QVERIFY(row->hasFocus());
        QCOMPARE(bench.rows().value(0), QStringLiteral("7:00 AM, 3400K"));
        QTest::keyClick(row, Qt::Key_Down);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
        QVERIFY(row->hasFocus());
        QTest::mouseClick(bench.button(QStringLiteral("Delete 7:00 AM")), Qt::LeftButton);
        QCOMPARE(bench.rows(), QStringList());
        QVERIFY(bench.labels().contains(QStringLiteral("No schedule entries. Add one to get started.")));
        QCOMPARE(decodeSchedule(*bench.userDefaults.data(defaults::scheduleEntries)).entries->size(), 0U);
    }

    void theMarkFollowsTheClockWhileItCanBeSeen()
    {
        Bench bench;
        bench.calendar.current = FakeCalendar::at(6, 59);
        bench.openSchedule({entry(7), entry(8, 3400, false), entry(21)});
        const auto marked = [&] { return bench.rows().indexOf(QRegularExpression(QStringLiteral(".*active"))); };
        QCOMPARE(marked(), 2);
        const auto timers = bench.window->findChildren<QTimer *>();
        const auto minute = std::ranges::find(timers, 60'000, &QTimer::interval);
        QVERIFY(minute != timers.end() && (*minute)->isActive());
        bench.calendar.current = FakeCalendar::at(20, 59);
        QCOMPARE(marked(), 2);
        QMetaObject::invokeMethod(*minute, "timeout");
        QCOMPARE(marked(), 0);
        bench.window->findChild<QTabBar *>()->setCurrentIndex(0);
        QVERIFY(!(*minute)->isActive());
    }

    void aLongScheduleOpensAtOnceAndIsScrolledToItsEnd()
    {
        Bench bench;
        bench.openSchedule(std::vector<ScheduleEntry>(300, entry(6)));
        QVERIFY(bench.window->height() <= bench.window->screen()->availableGeometry().height());
        QVERIFY(bench.rows().size() < 100);
        auto *page = bench.window->findChildren<Page *>().last();
        for (int round = 0; round < 50 && bench.rows().size() < 300; ++round) {
            page->verticalScrollBar()->setValue(page->verticalScrollBar()->maximum());
            QCoreApplication::processEvents();
        }
        QCOMPARE(bench.rows().size(), 300);
    }
};

QTEST_MAIN(SettingsWindow)
#include "SettingsWindow.moc"
