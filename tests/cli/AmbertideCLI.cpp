#include "model/Notifications.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "platform/linux/DBusRunningApplications.h"
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
    std::vector<Notification> taken;
    Observation updates = center.observe(notifications::updateTemperature, Delivery::immediate,
                                         [this](const Notification &update) { taken.push_back(update); });
    Observation requests = stranger.observe(notifications::getTemperature, Delivery::standard, [this](const auto &) {
        stranger.post(notifications::withTemperature(notifications::temperatureResponse, 1), Delivery::standard);
        center.post(notifications::withTemperature(notifications::temperatureResponse, 2700), Delivery::standard);
    });

    FakeApplication() { applications.withIdentifier("me.tovanu.Ambertide"); }
};

} // namespace

class AmbertideCLITest : public QObject
{
    Q_OBJECT

    PrivateBus m_bus;
    QProcess m_tool;

    void start(const QByteArray &arguments, const QByteArray &output = "")
    {
        QStringList list;
        for (const auto &argument : arguments.isNull() ? QByteArrayList() : arguments.split(','))
            list.append(QString::fromUtf8(argument));
        m_tool.setStandardOutputFile(QString::fromUtf8(output));
        m_tool.start(QStringLiteral(AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideCLI"), list);
    }

private Q_SLOTS:
    void wrongUsageIsRefused_data()
    {
        QTest::addColumn<QByteArray>("arguments");
        QTest::addColumn<bool>("isUsageShown");
        for (const char *temperature : {"", "3400.0", "3400K", " 3400", "3400 ", "+3400", "-3400", "0x1000", "3e3",
                                        "999", "6501", "99999999999999999999999999", "34\xc2\xb2"})
            QTest::addRow("set '%s'", temperature) << QByteArray("set,").append(temperature) << false;
        QTest::newRow("nothing") << QByteArray() << true;
        for (const char *arguments : {"put,3400", "--verbose", "set", "set,3400,3500", "get,3400", "--version,get"})
            QTest::newRow(arguments) << QByteArray(arguments) << true;
    }
    void wrongUsageIsRefused()
    {
        QFETCH(QByteArray, arguments);
        QFETCH(bool, isUsageShown);
        start(arguments);
        QVERIFY(m_tool.waitForFinished());
        QCOMPARE(m_tool.exitCode(), 2);
        QVERIFY(m_tool.readAllStandardOutput().isEmpty());
        const auto errors = m_tool.readAllStandardError();
        QVERIFY(isUsageShown ? errors.endsWith("Usage: ambertide set <temperature>\n       ambertide get\n")
                             : errors.contains("from 1000 to 6500") && errors.count('\n') == 1);
    }

    void theApplicationIsReached_data()
    {
        QTest::addColumn<QByteArray>("outputFile");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<int>("taken");
        const auto row = [](const char *arguments, const char *file, int status, const char *output, int taken) {
            QTest::addRow("%s %s", arguments, file) << QByteArray(file) << status << QByteArray(output) << taken;
        };
        row("get", "", 0, "2700\n", 0);
        row("get", "/dev/full", 1, "", 0);
        row("set,1000", "", 0, "", 1000);
        row("set,3449", "", 0, "", 3449);
        row("set,6500", "", 0, "", 6500);
    }
    void theApplicationIsReached()
    {
        QFETCH(QByteArray, outputFile);
        FakeApplication application;
        start(QByteArray(QTest::currentDataTag()).split(' ')[0], outputFile);
        QTRY_COMPARE(m_tool.state(), QProcess::NotRunning);
        QTEST(m_tool.exitCode(), "status");
        QTEST(m_tool.readAllStandardOutput(), "output");
        // What `set` posts has been taken by the time it ends.
        const auto kelvin = application.taken.empty() ? 0 : notifications::integerTemperature(application.taken[0]);
        QTEST(static_cast<int>(kelvin.value_or(-1)), "taken");
    }

    void anApplicationThatCannotBeReachedIsOneLineWithinTwoSeconds_data()
    {
        QTest::addColumn<QByteArray>("arguments");
        for (const char *situation : {"no bus", "bus frozen", "not running", "application frozen"}) {
            QTest::addRow("%s, get", situation) << QByteArray("get");
            QTest::addRow("%s, set", situation) << QByteArray("set,3400");
        }
    }
    void anApplicationThatCannotBeReachedIsOneLineWithinTwoSeconds()
    {
        QFETCH(QByteArray, arguments);
        const QByteArray situation = QByteArray(QTest::currentDataTag()).split(',')[0];
        // Frozen: its event loop does not run.
        const auto application = situation == "application frozen" ? std::make_unique<FakeApplication>() : nullptr;
        if (situation == "no bus")
            m_bus.stop();
        if (situation == "bus frozen")
            m_bus.freeze();
        QElapsedTimer timer;
        timer.start();
        start(arguments);
        QVERIFY(m_tool.waitForFinished());
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(m_tool.exitCode(), 1);
        QVERIFY(m_tool.readAllStandardOutput().isEmpty());
        QCOMPARE(m_tool.readAllStandardError().count('\n'), 1);
        m_bus.stop();
        m_bus.start();
    }
};

QTEST_GUILESS_MAIN(AmbertideCLITest)
#include "AmbertideCLI.moc"
