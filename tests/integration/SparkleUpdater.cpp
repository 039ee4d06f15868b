#include "integration/SparkleUpdater.h"

#include "support/FakeUserDefaults.h"

#include <QTest>

#include <optional>
#include <string>
#include <vector>

namespace ambertide {

namespace {

class FakeUpdaterController final : public UpdaterController
{
public:
    explicit FakeUpdaterController(std::vector<std::string> &calls) : m_calls(calls) {}

    void setAutomaticallyChecksForUpdates(bool isOn) override { m_calls.push_back(isOn ? "on" : "off"); }
    void setUpdateCheckInterval(double seconds) override { m_calls.push_back(std::to_string(seconds)); }
    void checkForUpdates() override { m_calls.push_back("check"); }
    bool canCheckForUpdates() const override { return false; }

private:
    std::vector<std::string> &m_calls;
};

} // namespace

class SparkleUpdaterTest : public QObject
{
    Q_OBJECT

private:
    using Calls = std::vector<std::string>;

    Calls m_calls;
    FakeUserDefaults m_defaults;
    UpdaterControllerFactory m_factory = [this] { return std::make_unique<FakeUpdaterController>(m_calls); };

private Q_SLOTS:
    void init()
    {
        m_calls.clear();
        m_defaults = {};
    }

    void onFirstStartAutomaticChecksAreOffAndDaily()
    {
        const SparkleUpdater updater(m_factory, m_defaults);
        QCOMPARE(m_calls, (Calls{"off", "86400.000000"}));
        QVERIFY(updater.canCheckForUpdates());
        QVERIFY(!updater.automaticallyChecksForUpdates());
        QVERIFY(!m_defaults.hasObject("Ambertide.AutoUpdate"));
    }

    void aChangeIsAnnouncedPassedOnAndStored()
    {
        SparkleUpdater updater(m_factory, m_defaults);
        m_calls.clear();
        const auto observation =
            updater.observe([&] { m_calls.push_back(updater.automaticallyChecksForUpdates() ? "was on" : "was off"); });
        updater.setAutomaticallyChecksForUpdates(true);
        QVERIFY(m_defaults.boolValue("Ambertide.AutoUpdate"));
        updater.setAutomaticallyChecksForUpdates(false);
        QVERIFY(m_defaults.hasObject("Ambertide.AutoUpdate") && !m_defaults.boolValue("Ambertide.AutoUpdate"));
        QCOMPARE(m_calls, (Calls{"was off", "on", "was on", "off"}));
    }

    void aChoiceReachesOnlyInstancesCreatedLater()
    {
        SparkleUpdater one(m_factory, m_defaults);
        const SparkleUpdater two(m_factory, m_defaults);
        one.setAutomaticallyChecksForUpdates(true);
        QVERIFY(!two.automaticallyChecksForUpdates());
        QVERIFY(SparkleUpdater(m_factory, m_defaults).automaticallyChecksForUpdates());
    }

    void aManualCheckIsAnAction()
    {
        SparkleUpdater updater(m_factory, m_defaults);
        updater.checkForUpdates();
        QCOMPARE(m_calls.back(), std::string("check"));
    }
};

} // namespace ambertide

QTEST_GUILESS_MAIN(ambertide::SparkleUpdaterTest)
#include "SparkleUpdater.moc"
