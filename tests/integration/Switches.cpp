#include "integration/LaunchHelper.h"
#include "integration/SparkleUpdater.h"
#include "ports/LoginItem.h"
#include "support/CapturedConsole.h"
#include "support/FakeUserDefaults.h"

#include <QTest>

using namespace ambertide;

/// What a person switches on and off in the settings.
class Switches : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void launchAtLoginIsSwitchedAndFailuresAreTold()
    {
        struct FakeLoginItem final : LoginItem
        {
            LoginItemStatus status() const override { return current; }
            std::optional<std::string> registerItem() override { return call('+'); }
            std::optional<std::string> unregisterItem() override { return call('-'); }
            std::optional<std::string> call(char name)
            {
                calls += name;
                return name == failing ? std::optional("locked") : std::nullopt;
            }
            LoginItemStatus current;
            char failing;
            std::string calls;
        };
        /// The calls that switching leads to, and what is printed.
        const auto switching = [](bool isOn, LoginItemStatus status, char failing = ' ') {
            FakeLoginItem item;
            item.current = status;
            item.failing = failing;
            const CapturedConsole console;
            LaunchHelper(item).setLaunchAtLogin(isOn);
            return item.calls + (console.lines.empty() ? "" : console.lines.front());
        };
        using enum LoginItemStatus;
        QCOMPARE(switching(true, RequiresApproval), "+");
        QCOMPARE(switching(true, Enabled), "-+"); // renewed
        QCOMPARE(switching(true, Enabled, '-'), "-Failed to enable launch at login: locked");
        QCOMPARE(switching(true, NotFound, '+'), "+Failed to enable launch at login: locked");
        QCOMPARE(switching(false, NotRegistered, '-'), "-Failed to disable launch at login: locked");
    }

    void automaticUpdatesAreAppliedAnnouncedAndStored()
    {
        struct FakeUpdaterController final : UpdaterController
        {
            explicit FakeUpdaterController(std::string &recorded) : calls(recorded) {}
            void setAutomaticallyChecksForUpdates(bool isOn) override { calls += isOn ? "on " : "off "; }
            void setUpdateCheckInterval(double seconds) override { calls += std::to_string(seconds) + ' '; }
            void checkForUpdates() override { calls += "check "; }
            bool canCheckForUpdates() const override { return false; }
            std::string &calls;
        };
        std::string calls;
        FakeUserDefaults defaults;
        const UpdaterControllerFactory factory = [&] { return std::make_unique<FakeUpdaterController>(calls); };
        SparkleUpdater updater(factory, defaults);
        QVERIFY(!defaults.hasObject("Ambertide.AutoUpdate"));
        const auto observation =
            updater.observe([&] { calls += updater.automaticallyChecksForUpdates() ? "was on " : "was off "; });
        updater.setAutomaticallyChecksForUpdates(true);
        QVERIFY(SparkleUpdater(factory, defaults).automaticallyChecksForUpdates());
        updater.setAutomaticallyChecksForUpdates(false);
        QVERIFY(defaults.hasObject("Ambertide.AutoUpdate") && !defaults.boolValue("Ambertide.AutoUpdate"));
        updater.checkForUpdates();
        QCOMPARE(calls, "off 86400.000000 was off on on 86400.000000 was on off check ");
    }
};

QTEST_GUILESS_MAIN(Switches)
#include "Switches.moc"
