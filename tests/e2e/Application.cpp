#include "display/DisplayManager.h"
#include "e2e/ApplicationProcess.h"
#include "model/ScheduleEntry.h"
#include "platform/qt/SettingsUserDefaults.h"
#include "platform/qt/SystemCalendar.h"
#include "support/ChildProcess.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <csignal>

#include <sys/prctl.h>
#include <sys/wait.h>

using namespace ambertide;

namespace {

constexpr auto registered = "Registering for CLI temperature notifications...";

int repetitions()
{
    return std::max(1, qEnvironmentVariableIntValue("AMBERTIDE_TEST_REPETITIONS"));
}

} // namespace

class ApplicationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theToolSetsAndGetsTheTemperatureOfEveryDisplay()
    {
        PrivateSession session(PrivateXServer::Kind::dummy);
        session.server.switchOn(QStringLiteral("DUMMY1"));
        ApplicationProcess application;
        QVERIFY(application.waitForLine(registered));
        QCOMPARE(runTool({QStringLiteral("get")}).output, QByteArray("6500\n"));

        QCOMPARE(runTool({QStringLiteral("set"), QStringLiteral("3400")}).status, 0);
        QCOMPARE(runTool({QStringLiteral("get")}).output, QByteArray("3400\n"));
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3400), 20'000);
        QVERIFY(application.printed().contains("\nSetting temperature to 3400K\n"));

        session.server.switchOn(QStringLiteral("DUMMY2"));
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3400), 20'000); // by the next periodic pass

        QCOMPARE(runTool({QStringLiteral("set"), QStringLiteral("6500")}).status, 0);
        QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), 20'000);
        QTRY_COMPARE_WITH_TIMEOUT(SettingsUserDefaults(session.settingsPath()).doubleValue("Ambertide.Temperature"), 6500.0,
                                  20'000);
    }

    void theScheduleTintsTheDisplaysByItself()
    {
        PrivateSession session;
        ApplicationProcess application;
        QVERIFY(application.waitForLine(registered));
        {
            SettingsUserDefaults settings(session.settingsPath());
            settings.setData("Ambertide.ScheduleEntries",
                             encodeSchedule(std::vector{ScheduleEntry{.time = SystemCalendar().now(), .temperature = 2700}}));
            settings.setBool("Ambertide.ScheduleEnabled", true);
        }
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(2700), 20'000);
        QCOMPARE(runTool({QStringLiteral("set"), QStringLiteral("4000")}).status, 0);
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(4000), 20'000);
        QVERIFY(!SettingsUserDefaults(session.settingsPath()).boolValue("Ambertide.ScheduleEnabled"));
    }

    void theDisplaysAreGivenBackHoweverItEnds_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<int>("status");
        QTest::newRow("SIGTERM") << SIGTERM << 0;
        QTest::newRow("SIGINT") << SIGINT << 0;
        QTest::newRow("SIGKILL") << SIGKILL << -SIGKILL;
        QTest::newRow("quit") << 0 << 0;
    }
    /// AMBERTIDE_TEST_REPETITIONS asks for more rounds than the one of an ordinary run.
    void theDisplaysAreGivenBackHoweverItEnds()
    {
        QFETCH(int, signal);
        QFETCH(int, status);
        PrivateSession session;
        prctl(PR_SET_CHILD_SUBREAPER, 1); // orphaned guardians become children of this test
        for (int round = 0; round < repetitions(); ++round) {
            session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
            ApplicationProcess application;
            QTRY_VERIFY_WITH_TIMEOUT(session.shows(5500), 20'000); // where every first ramp begins
            const pid_t guardian = childOf(application.processIdentifier(), "AmbertideGuardian");
            QVERIFY(guardian != 0);
            // Anywhere in a ramp, a reset or a request.
            QTest::qWait(QRandomGenerator::global()->bounded(round == 0 ? 1 : 1500));
            if (round % 3 != 0)
                runTool({QStringLiteral("set"), QString::number(2000 + 1500 * (round % 4))});
            if (signal != 0) {
                application.sendSignal(signal);
            } else {
                QVERIFY(application.waitForLine(registered));
                QVERIFY(activateAction("quit"));
            }
            QCOMPARE(application.waitForEnd(), status);
            QElapsedTimer sinceEnd;
            sinceEnd.start();
            QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), 20'000);
            if (sinceEnd.elapsed() > 500)
                qWarning("restored only after %lld ms", sinceEnd.elapsed());
            QTRY_VERIFY_WITH_TIMEOUT(waitpid(guardian, nullptr, WNOHANG) != 0, 20'000);
        }
    }
};

QTEST_GUILESS_MAIN(ApplicationTest)
#include "Application.moc"
