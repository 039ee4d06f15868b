#include "model/Notifications.h"
#include "platform/Console.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "platform/linux/DBusRunningApplications.h"
#include "platform/linux/PostedSignal.h"
#include "support/PrivateBus.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>
#include <optional>

using namespace ambertide;

namespace {

/// The running application, as far as the tool can tell.
struct FakeApplication
{
    DBusSession session{SdBusKind::session};
    DBusNotificationCenter center{session};
    DBusRunningApplications applications{session};

    explicit FakeApplication()
    {
        if (applications.withIdentifier("me.tovanu.Ambertide").size() != 1)
            qFatal("The private bus is not empty");
    }
    Observation answerWith(Notification answer)
    {
        return center.observe(notifications::getTemperature, Delivery::standard,
                              [this, answer](const Notification &) { center.post(answer, Delivery::immediate); });
    }
};

} // namespace

class AmbertideCLIProcessTest : public QObject
{
    Q_OBJECT

    PrivateBus m_bus;
    QProcess m_tool;

    /// Starts the tool and waits for its end, in which this process's part of the bus is served or not.
    void run(const QStringList &arguments, bool isServed = true)
    {
        m_tool.start(QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideCLI"), arguments);
        if (isServed)
            QTRY_COMPARE(m_tool.state(), QProcess::NotRunning);
        else
            QVERIFY(m_tool.waitForFinished());
        QCOMPARE(m_tool.exitStatus(), QProcess::NormalExit);
    }

private Q_SLOTS:
    void init()
    {
        m_bus.stop();
        m_bus.start();
        m_tool.setStandardOutputFile(QString());
    }

    void getPrintsWhatTheApplicationAnswers()
    {
        FakeApplication application;
        const auto answering =
            application.answerWith(notifications::withTemperature(notifications::temperatureResponse, 2700));
        run({QStringLiteral("get")});
        QCOMPARE(m_tool.readAllStandardOutput(), QByteArray("2700\n"));
        QCOMPARE(m_tool.exitCode(), 0);
    }

    void getTakesNobodyElsesAnswer()
    {
        FakeApplication application;
        DBusSession strangerSession(SdBusKind::session);
        DBusNotificationCenter stranger(strangerSession);
        const auto forging =
            stranger.observe(notifications::getTemperature, Delivery::standard, [&](const Notification &) {
                stranger.post(notifications::withTemperature(notifications::temperatureResponse, 1),
                              Delivery::standard);
                application.center.post(notifications::withTemperature(notifications::temperatureResponse, 5000),
                                        Delivery::standard);
            });
        run({QStringLiteral("get")});
        QCOMPARE(m_tool.readAllStandardOutput(), QByteArray("5000\n"));
    }

    void getFailsWhenItsOutputIsFull()
    {
        FakeApplication application;
        const auto answering =
            application.answerWith(notifications::withTemperature(notifications::temperatureResponse, 2700));
        m_tool.setStandardOutputFile(QStringLiteral("/dev/full"));
        run({QStringLiteral("get")});
        QCOMPARE(m_tool.exitCode(), 1);
    }

    void setHasBeenTakenWhenTheToolEnds()
    {
        FakeApplication application;
        std::optional<Notification> taken;
        const auto observation = application.center.observe(notifications::updateTemperature, Delivery::immediate,
                                                            [&](const Notification &received) { taken = received; });
        run({QStringLiteral("set"), QStringLiteral("3400")});
        QCOMPARE(m_tool.exitCode(), 0);
        QVERIFY(taken);
        QCOMPARE(notifications::integerTemperature(*taken), std::int64_t{3400});
        QVERIFY(m_tool.readAllStandardOutput().isEmpty() && m_tool.readAllStandardError().isEmpty());
    }

    void anApplicationThatCannotBeReachedIsOneLineWithinTwoSeconds_data()
    {
        QTest::addColumn<QString>("situation");
        for (const char *situation : {"no bus", "bus answers nothing", "not running", "application stopped"})
            QTest::newRow(situation) << QString::fromLatin1(situation);
    }
    void anApplicationThatCannotBeReachedIsOneLineWithinTwoSeconds()
    {
        QFETCH(QString, situation);
        std::unique_ptr<FakeApplication> application;
        if (situation == QStringLiteral("no bus"))
            m_bus.stop();
        else if (situation == QStringLiteral("bus answers nothing"))
            m_bus.freeze();
        else if (situation == QStringLiteral("application stopped"))
            application = std::make_unique<FakeApplication>();

        for (const auto &arguments :
             {QStringList{QStringLiteral("get")}, QStringList{QStringLiteral("set"), QStringLiteral("3400")}}) {
            QElapsedTimer timer;
            timer.start();
            run(arguments, false);
            QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
            QCOMPARE(m_tool.exitCode(), 1);
            QVERIFY(m_tool.readAllStandardOutput().isEmpty());
            QCOMPARE(m_tool.readAllStandardError().count('\n'), 1);
        }
    }
};

QTEST_GUILESS_MAIN(AmbertideCLIProcessTest)
#include "AmbertideCLIProcess.moc"
