#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "adapters/linux/bus/DBusRunningApplications.h"
#include "protocol/Notifications.h"
#include "support/PrivateBus.h"

#include <QElapsedTimer>
#include <QTest>

using namespace ambertide;

namespace {

/// The running application, as far as the tool can tell, with a stranger who answers in its place, and before it.
struct FakeApplication
{
    DBusSession session{SdBusKind::session};
    DBusNotificationCenter center{session};
    DBusRunningApplications applications{session};
    DBusSession strangersSession{SdBusKind::session};
    DBusNotificationCenter stranger{strangersSession};
    std::int64_t taken = 0;
    std::optional<std::string> refusal;
    Observation updates =
        center.observe(notifications::updateTemperature, Delivery::immediate,
                       [this](const auto &update) { taken = notifications::integerTemperature(update).value_or(-1); });
    Observation requests = stranger.observe(notifications::getTemperature, Delivery::standard, [this](const auto &) {
        stranger.post(notifications::withTemperature(notifications::temperatureResponse, 1), Delivery::standard);
        auto response = notifications::withTemperature(notifications::temperatureResponse, 2700);
        if (refusal)
            response.userInfo->emplace(notifications::refusalKey, *refusal);
        center.post(response, Delivery::standard);
    });

    FakeApplication() { applications.withIdentifier("me.tovanu.Ambertide"); }
};

} // namespace

class AmbertideCLITest : public QObject
{
    Q_OBJECT

    QProcess m_tool;

    void start(const QByteArray &arguments)
    {
        m_tool.start(QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideCLI"),
                     arguments.isEmpty() ? QStringList() : QString::fromUtf8(arguments).split(u','));
    }
    /// While this process answers.
    int statusOf(const QByteArray &arguments)
    {
        start(arguments);
        return QTest::qWaitFor([this] { return m_tool.state() == QProcess::NotRunning; }) ? m_tool.exitCode() : -1;
    }

private Q_SLOTS:
    void wrongUsageIsRefused()
    {
        for (const char *temperature : {"", "3400.0", "3400K", " 3400", "3400 ", "+3400", "0x1000", "3e3", "999",
                                        "6501", "99999999999999999999999999", "34\xc2\xb2"}) {
            QCOMPARE(statusOf(QByteArray("set,").append(temperature)), 2);
            const auto errors = m_tool.readAllStandardError();
            QVERIFY2(errors.contains("from 1000 to 6500") && errors.count('\n') == 1, temperature);
        }
        for (const char *arguments : {"", "put,3400", "set", "set,3400,3500", "--version,get"}) {
            QCOMPARE(statusOf(arguments), 2);
            QVERIFY2(
                m_tool.readAllStandardError().endsWith("Usage: ambertide set <temperature>\n       ambertide get\n"),
                arguments);
            QVERIFY(m_tool.readAllStandardOutput().isEmpty());
        }
    }

    void theApplicationIsReached()
    {
        const PrivateBus bus;
        FakeApplication application;
        for (const int kelvin : {1000, 3449, 6500}) {
            QCOMPARE(statusOf("set," + QByteArray::number(kelvin)), 0);
            QCOMPARE(application.taken, kelvin); // by the time the tool ends
        }
        application.refusal = "No display\033[2J\ncan be tinted.";
        QCOMPARE(statusOf("set,3400"), 1);
        QCOMPARE(m_tool.readAllStandardError(), QByteArray("ambertide: No display[2Jcan be tinted.\n"));
        QCOMPARE(statusOf("get"), 0);
        QCOMPARE(m_tool.readAllStandardOutput(), QByteArray("2700\n"));
        m_tool.setStandardOutputFile(QStringLiteral("/dev/full"));
        QCOMPARE(statusOf("get"), 1);
        m_tool.setStandardOutputFile({});
        application.requests.release();
        QCOMPARE(statusOf("set,3400"), 1); // nobody tells whether that can be shown
    }

    void anApplicationThatCannotBeReachedIsOneLineWithinTwoSeconds()
    {
        const QByteArrayList situations = {"no bus", "bus frozen", "not running", "application frozen"};
        for (const auto &situation : situations) {
            PrivateBus bus;
            // Frozen: its event loop does not run.
            const auto application = situation == "application frozen" ? std::make_unique<FakeApplication>() : nullptr;
            if (situation == "no bus")
                bus.stop();
            if (situation == "bus frozen")
                bus.freeze();
            for (const char *arguments : {"get", "set,3400"}) {
                QElapsedTimer timer;
                timer.start();
                start(arguments);
                QVERIFY(m_tool.waitForFinished());
                QVERIFY2(timer.elapsed() < 2000, situation);
                QVERIFY2(m_tool.exitCode() == 1, situation);
                QVERIFY(m_tool.readAllStandardOutput().isEmpty());
                QCOMPARE(m_tool.readAllStandardError().count('\n'), 1);
            }
        }
    }
};

QTEST_GUILESS_MAIN(AmbertideCLITest)
#include "AmbertideCLI.moc"
