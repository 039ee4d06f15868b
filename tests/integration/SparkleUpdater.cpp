#include "integration/SparkleUpdater.h"

#include "support/FakeUserDefaults.h"

#include <QTest>

namespace ambertide {

namespace {

using Calls = std::vector<std::string>;

struct FakeUpdaterController final : UpdaterController
{
    explicit FakeUpdaterController(Calls &recorded) : calls(recorded) {}
    void setAutomaticallyChecksForUpdates(bool isOn) override { calls.push_back(isOn ? "on" : "off"); }
    void setUpdateCheckInterval(double seconds) override { calls.push_back(std::to_string(seconds)); }
    void checkForUpdates() override { calls.push_back("check"); }
    bool canCheckForUpdates() const override { return false; }
    Calls &calls;
};

} // namespace

class SparkleUpdaterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theChoiceIsAppliedAnnouncedAndStored()
    {
        Calls calls;
        FakeUserDefaults defaults;
        const UpdaterControllerFactory factory = [&] { return std::make_unique<FakeUpdaterController>(calls); };
        SparkleUpdater updater(factory, defaults);
        QCOMPARE(calls, (Calls{"off", "86400.000000"})); // on first start
        QVERIFY(updater.canCheckForUpdates() && !updater.automaticallyChecksForUpdates());
        QVERIFY(!defaults.hasObject("Ambertide.AutoUpdate"));
        const SparkleUpdater earlier(factory, defaults);

        calls.clear();
        const auto observation =
            updater.observe([&] { calls.push_back(updater.automaticallyChecksForUpdates() ? "was on" : "was off"); });
        updater.setAutomaticallyChecksForUpdates(true);
        QVERIFY(defaults.boolValue("Ambertide.AutoUpdate"));
        QVERIFY(!earlier.automaticallyChecksForUpdates());
        QVERIFY(SparkleUpdater(factory, defaults).automaticallyChecksForUpdates());
        updater.setAutomaticallyChecksForUpdates(false);
        QVERIFY(defaults.hasObject("Ambertide.AutoUpdate") && !defaults.boolValue("Ambertide.AutoUpdate"));
        updater.checkForUpdates();
        QCOMPARE(calls, (Calls{"was off", "on", "on", "86400.000000", "was on", "off", "check"}));
    }
};

} // namespace ambertide

QTEST_GUILESS_MAIN(ambertide::SparkleUpdaterTest)
#include "SparkleUpdater.moc"
