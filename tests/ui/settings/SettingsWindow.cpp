#include "integration/CLIInstaller.h"
#include "integration/LaunchHelper.h"
#include "support/CapturedConsole.h"
#include "support/ModelBench.h"
#include "ui/controls/HouseStyle.h"
#include "ui/controls/Page.h"
#include "ui/controls/Sheet.h"
#include "ui/controls/TextLabel.h"
#include "ui/settings/ScheduleEntryEditor.h"
#include "ui/settings/ScheduleEntryRow.h"
#include "ui/settings/SettingsView.h"

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace ambertide;
namespace fs = std::filesystem;

namespace {

/// An open Settings window with everything that it works on.
struct Bench : ModelBench
{
    QTemporaryDir folder;
    FakeTaskExecutor installerExecutor;
    CapturedConsole console;
    FakeMainBundle bundle = FakeMainBundle(folder.path().toStdString());
    fs::path tool = bundle.bundlePath / "Contents/MacOS/AmbertideCLI";
    fs::path link = bundle.bundlePath / "link";
    CLIInstaller installer = CLIInstaller(bundle, system, link);
    LaunchHelper launchHelper = LaunchHelper(system);
    QPointer<SettingsView> window;

    Bench() : ModelBench(AppViewModel::neutralTemperature)
    {
        fs::create_directories(tool.parent_path());
        std::ofstream(tool) << "tool";
    }
    ~Bench() { delete window; }

    void open()
    {
        window = new SettingsView(*model, {installer, launchHelper, bundle, system.createUpdater, userDefaults,
                                           notifications, calendar, system, installerExecutor});
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    void openSchedule(std::size_t count)
    {
        storeSchedule(std::vector<ScheduleEntry>(count));
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
    Sheet *sheet() const
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return window->findChild<Sheet *>();
    }
};

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
        bench.openSchedule(1);
        QCOMPARE(bench.window->width(), 600);
        const QSize former = bench.window->size();
        bench.button("Edit 12:00 AM")->click();
        QCoreApplication::processEvents();
        QCOMPARE(bench.sheet()->findChild<Page *>()->size(), QSize(400, 300));
        QCOMPARE(bench.window->size(), former);
        delete bench.window;
        QFont larger = font;
        larger.setPointSize(26);
        QApplication::setFont(larger);
        bench.open();
        for (const auto *control : bench.window->findChildren<QWidget *>()) {
            const int left = control->mapTo(bench.window, QPoint()).x();
            QVERIFY(!control->isVisible() || (left >= 0 && left + control->width() <= bench.window->width()));
        }
        QApplication::setFont(font);
    }

    void savesTheTimeThatItShowsHoweverItIsTyped()
    {
        const struct
        {
            std::vector<const char *> typed;
            QTime saved; // invalid where Save waits
            const char *shown;
            const char *locale = "en_US";
        } groups[] = {
            {{"9:30 am", "9:30 AM", "930a", "0930", " 9.30 A.M. ", "9 30", "9h30", "AM 9:30"}, {9, 30}, "9:30 AM"},
            {{"21:30", "2130", "9:30pm", "930 P", "21.30", "21:30 pm", "21:30 Uhr"}, {21, 30}, "9:30 PM"},
            {{"9a"}, {9, 0}, "9:00 AM"},
            {{"12a", "24:00"}, {0, 0}, "12:00 AM"},
            {{"12 p.m."}, {12, 0}, "12:00 PM"},
            {{"9:30 p"}, {21, 30}, "21:30", "de_DE"},
            {{"9.30"}, {9, 30}, "09:30", "de_DE"},
            {{"9:30 \xce\xbc.\xce\xbc."}, {21, 30}, "9:30 \xce\xbc.\xce\xbc.", "el_GR"},
            {{"", "21:3", "25:00", "9:60", "93", "0p", "21:30 am", "9:30 x", "9:30:15", "-9"}, {}, nullptr},
        };
        for (const auto &[typings, saved, shown, locale] : groups) {
            QLocale::setDefault(QLocale(QLatin1String(locale)));
            for (const auto *typed : typings) {
                const FakeCalendar calendar;
                ScheduleEntryEditor editor({}, {100, 1000, 6500}, calendar);
                std::optional<Date> stored;
                connect(&editor, &ScheduleEntryEditor::saved, &editor, [&](const auto &entry) { stored = entry.time; });
                auto *text = editor.findChild<QLineEdit *>();
                text->setText(QString::fromUtf8(typed));
                QFocusEvent left(QEvent::FocusOut);
                QApplication::sendEvent(text->parentWidget(), &left);
                QCOMPARE(text->text(), QString::fromUtf8(shown != nullptr ? shown : typed));
                QTest::keyClick(&editor, Qt::Key_Return);
                QCoreApplication::processEvents();
                QCOMPARE(stored.has_value(), saved.isValid());
                QVERIFY2(!stored || *stored == FakeCalendar::at(saved.hour(), saved.minute()), typed);
            }
        }
        QLocale::setDefault(QLocale::c());
    }

    void theSwitchesReachTheSystem()
    {
        Bench bench;
        bench.userDefaults.setBool("Ambertide.AutoUpdate", true);
        bench.openSchedule(1);
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
        QCOMPARE(bench.system.calls, "on login off no-login on check ");
    }

    void offersNoUpdatesInABuildWithoutUpdater()
    {
        Bench bench;
        bench.system.createUpdater = [] { return nullptr; };
        bench.open();
        for (const auto *each : bench.window->findChildren<QAbstractButton *>())
            QVERIFY(!each->isVisible() || !(each->text() + each->accessibleName()).contains(QStringLiteral("pdate")));
    }

    void installsAndRemovesTheTool()
    {
        const auto installation = QStringLiteral("mkdir -p /usr/local/bin && ln -sf "
                                                 "'/Contents/MacOS/AmbertideCLI' '/link'");
        const struct
        {
            bool isLinked;
            bool hasTool;
            QString command;     // without the folder; where there is none, the link goes before the button is pressed
            const char *problem; // that the system has with it
            const char *alert;
        } rows[] = {
            {false, true, installation, nullptr, nullptr},
            {true, true, QStringLiteral("rm -f '/link'"), nullptr, nullptr},
            {true, true, {}, nullptr, nullptr},
            {false, true, installation, "no", "Failed to install the CLI tool: no"},
            {true, false, {}, nullptr, "Could not find CLI executable in app bundle"},
        };
        for (const auto &[isLinked, hasTool, command, problem, alert] : rows) {
            Bench bench;
            if (isLinked)
                fs::create_symlink(bench.tool, bench.link);
            if (!hasTool)
                fs::remove(bench.tool);
            if (problem != nullptr)
                bench.system.result = {PrivilegedResult::Status::Failed, QString::fromLatin1(problem)};
            bench.open();
            bench.system.calls.clear();
            const bool isUninstalled = isLinked && hasTool; // a link that leads nowhere is none
            auto *button = bench.button(isUninstalled ? "Uninstall" : "Install");
            button->setFocus();
            button->click();
            QVERIFY(!bench.button("Start at login")->isEnabled() && !bench.button("Check for Updates...")->isEnabled());
            QVERIFY(button->isHidden() && !button->hasFocus());

            if (command.isEmpty())
                fs::remove(bench.link);
            bench.installerExecutor.runReady();
            QCOMPARE(QString::fromStdString(bench.system.calls).remove(bench.folder.path()), command);
            QCOMPARE(bench.sheet() != nullptr, alert != nullptr);
            if (alert != nullptr) {
                QVERIFY(bench.sheet()->accessibleName().endsWith(QLatin1String(alert)));
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
                QVERIFY(bench.sheet() == nullptr);
            }
            QCOMPARE(button->text(), QLatin1String(isUninstalled == (alert == nullptr) ? "Install" : "Uninstall"));
            QVERIFY(button->isEnabled() && button->hasFocus());
        }
    }

    void tellsOfTroubleForAsLongAsItLasts()
    {
        Bench bench;
        bench.open();
        const int height = bench.window->height();
        for (const auto &[file, hasGuardian, lines] :
             {std::tuple("/file", true, 1), {"/file", false, 2}, {"", true, 0}}) {
            bench.userDefaults.fileInTrouble = *file ? std::optional(file) : std::nullopt;
            bench.displays.hasGuardian = hasGuardian;
            const auto *const trouble = bench.window->findChildren<TextLabel *>(Qt::FindDirectChildrenOnly).value(0);
            QTRY_COMPARE(trouble->text().split(u'\n', Qt::SkipEmptyParts).size(), lines);
            QTRY_COMPARE(bench.window->height() - height, lines > 0 ? 10 + trouble->height() : 0);
        }
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

    void aLongScheduleOpensAtOnceAndIsScrolledToItsEnd()
    {
        Bench bench;
        bench.openSchedule(300);
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
