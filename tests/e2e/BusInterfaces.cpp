#include "adapters/linux/bus/BusNames.h"
#include "e2e/ApplicationProcess.h"
#include "support/busctl.h"

using namespace ambertide;

class BusInterfacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCallStartsItAndIsAnswered_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("state");
        QTest::addColumn<double>("shown");
        const auto row = [](const char *request, const char *reply, const char *state, double shown) {
            QTest::newRow(request) << QString::fromLatin1(reply) << QString::fromLatin1(state) << shown;
        };
        row("call me.tovanu.Ambertide /runner org.kde.krunner1 Run ss k3400 any", "", "d 3400 b false", 3400);
        row("call me.tovanu.Ambertide /me/tovanu/Ambertide/SearchProvider org.gnome.Shell.SearchProvider2 "
            "GetInitialResultSet as 1 candle",
            "as 1 \"k1900\"", "d 5500 b true", 5500);
        row("set-property me.tovanu.Ambertide /me/tovanu/Ambertide me.tovanu.Ambertide1 Temperature d 3449", "",
            "d 3400 b false", 3400);
        row("set-property me.tovanu.Ambertide /me/tovanu/Ambertide me.tovanu.Ambertide1 Temperature d 949",
            "Failed to set property Temperature on interface me.tovanu.Ambertide1: "
            "The temperature must be between 1000 and 6500 K",
            "d 5500 b true", 5500);
    }
    void aCallStartsItAndIsAnswered()
    {
        QFETCH(QString, state);
        QFETCH(double, shown);
        PrivateSession session;
        session.writeSettings("[General]\nAmbertide.Temperature=5500\nAmbertide.ScheduleEnabled=true\n");
        session.bus.addService(bus_names::application, AMBERTIDE_BUNDLE "/Contents/MacOS/Ambertide");
        const auto run = [](const char *arguments) { return busctl(QString::fromLatin1(arguments)).simplified(); };
        QTEST(run(QTest::currentDataTag()), "reply");
        const auto *const read = "get-property me.tovanu.Ambertide /me/tovanu/Ambertide me.tovanu.Ambertide1 "
                                 "Temperature ScheduleEnabled";
        QTRY_COMPARE_WITH_TIMEOUT(run(read), state, 20'000);
        QTRY_VERIFY_WITH_TIMEOUT(session.shows(shown), 20'000);
        QCOMPARE(runTool({QStringLiteral("get")}).toDouble(), shown);
        QVERIFY(activateAction("quit"));
        QTRY_VERIFY_WITH_TIMEOUT(session.isRestored(), 20'000);
    }
};

QTEST_GUILESS_MAIN(BusInterfacesTest)
#include "BusInterfaces.moc"
