#include "adapters/qt/SettingsUserDefaults.h"
#include "adapters/qt/SystemCalendar.h"
#include "e2e/ApplicationProcess.h"
#include "model/ScheduleEntry.h"
#include "support/ChildProcess.h"
#include "support/busctl.h"

#include <QRandomGenerator>

#include <sys/prctl.h>
#include <sys/wait.h>

using namespace ambertide;

namespace {

QString call(const char *arguments) { return busctl(QString::fromLatin1(arguments)).simplified(); }

/// What it says to that, if anything.
QString quit()
{
    return call("call me.tovanu.Ambertide /me/tovanu/Ambertide org.freedesktop.Application ActivateAction sava{sv} "
                "quit 0 0");
}

} // namespace

class ApplicationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCallOfAnotherProgramStartsIt()
    {
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=5500\nAmbertide.ScheduleEnabled=true\n");
        session.bus.addService("me.tovanu.Ambertide", AMBERTIDE_BUNDLE "/Contents/MacOS/Ambertide");
        QCOMPARE(call("call me.tovanu.Ambertide /runner org.kde.krunner1 Run ss "
                      "applications:me.tovanu.Ambertide.desktop?action=k3400 any"),
                 QString());
        const auto *const state = "get-property me.tovanu.Ambertide /me/tovanu/Ambertide me.tovanu.Ambertide1 "
                                  "Temperature ScheduleEnabled";
        QTRY_COMPARE_WITH_TIMEOUT(call(state), QStringLiteral("d 3400 b false"), patience);
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3400), patience);
        QCOMPARE(quit(), QString());
        QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), patience);
    }

    void theToolSetsAndGetsTheTemperatureOfEveryDisplay()
    {
        PrivateSession session(PrivateXServer::Kind::dummy);
        session.server.switchOn(QStringLiteral("DUMMY1"));
        ApplicationProcess application;
        QVERIFY(application.waitUntilRegistered());
        QCOMPARE(runTool("get"), QByteArray("6500\n"));

        QCOMPARE(runTool("set 3400"), QByteArray());
        QCOMPARE(runTool("get"), QByteArray("3400\n"));
        QTRY_VERIFY_WITH_TIMEOUT(session.isTinted(), patience);
        session.server.switchOff(QStringLiteral("DUMMY1")); // during the ramp
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(3400), patience);
        QCOMPARE(runTool("set 6500"), QByteArray());
        QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), patience); // the one that is off as well
    }

    void theScheduleTintsTheDisplaysByItself()
    {
        PrivateSession session;
        ApplicationProcess application;
        QVERIFY(application.waitUntilRegistered());
        SettingsUserDefaults settings(session.settingsPath());
        const std::vector entries = {ScheduleEntry{.time = SystemCalendar().now(), .temperature = 2700}};
        settings.setData("Ambertide.ScheduleEntries", encodeSchedule(entries));
        settings.setBool("Ambertide.ScheduleEnabled", true);
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(2700), patience);
        QCOMPARE(runTool("set 4000"), QByteArray());
        application.sendSignal(SIGTERM); // what was set is stored though it ends at once
        QCOMPARE(application.waitForEnd(), 0);
        QTRY_COMPARE(settings.doubleValue("Ambertide.Temperature"), 4000.0);
        QVERIFY(!settings.boolValue("Ambertide.ScheduleEnabled"));
    }

    /// AMBERTIDE_TEST_REPETITIONS asks for more rounds, each ended at a random moment of a ramp or a
    /// request, and holds the guardian to half a second.
    void theDisplaysAreGivenBackHoweverItEnds()
    {
        PrivateSession session;
        prctl(PR_SET_CHILD_SUBREAPER, 1); // orphaned guardians become children of this test
        const std::array<QList<int>, 4> ends = {
            {{SIGTERM}, {SIGINT, SIGTERM}, {SIGKILL}, {}}}; // or it is asked to quit
        const int rounds = std::max(1, qEnvironmentVariableIntValue("AMBERTIDE_TEST_REPETITIONS"));
        for (int each = 0; each < 4 * rounds; ++each) {
            const auto &signalNumbers = ends[static_cast<std::size_t>(each % 4)];
            const int round = each / 4;
            session.writeSettings("[General]\nAmbertide.Temperature=3000\n");
            ApplicationProcess application;
            QTRY_VERIFY_WITH_TIMEOUT(session.isTinted(), patience);
            const pid_t guardian = childOf(application.processIdentifier(), "AmbertideGuardian");
            QVERIFY(guardian != 0);
            if (round > 0)
                QTest::qWait(QRandomGenerator::global()->bounded(1500));
            if (round % 3 == 2)
                runTool("set " + QByteArray::number(2000 + 1500 * (round % 4)));
            if (signalNumbers.isEmpty())
                QCOMPARE(quit(), QString());
            if (signalNumbers.contains(SIGTERM))
                kill(guardian, SIGKILL); // it does so by itself, too
            for (const int signal : signalNumbers)
                application.sendSignal(signal);
            QCOMPARE(application.waitForEnd(), signalNumbers.contains(SIGKILL) ? -SIGKILL : 0);
            QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), rounds > 1 ? 500 : patience);
            QTRY_VERIFY(waitpid(guardian, nullptr, WNOHANG) != 0);
        }
    }
};

QTEST_GUILESS_MAIN(ApplicationTest)
#include "Application.moc"
