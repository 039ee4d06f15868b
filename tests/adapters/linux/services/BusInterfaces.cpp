#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/services/DBusApplicationObject.h"
#include "adapters/linux/services/DBusTemperatureObject.h"
#include "adapters/linux/services/GnomeSearchProvider.h"
#include "adapters/linux/services/KRunnerObject.h"
#include "support/ModelBench.h"
#include "support/PrivateBus.h"
#include "support/busctl.h"

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// All that the application exports, under its name.
struct Exports
{
    PrivateBus bus;
    QStringList events;
    ModelBench bench{6500};
    std::function<void(ColorTemperature)> perform = [this](auto preset) {
        events += QString::number(rawValue(preset));
    };
    DBusSession session{SdBusKind::session};
    DBusApplicationObject application{session, [](const auto &) {}, perform};
    KRunnerObject runner{session, perform};
    GnomeSearchProvider searchProvider{session, perform, [this] { events += QStringLiteral("launch"); }};
    DBusTemperatureObject temperature{session, *bench.model};

    Exports()
    {
        sd_bus_request_name(session.readyBus(std::chrono::steady_clock::now() + 20s), bus_names::application, 0);
    }
};

int keepChanges(sd_bus_message *message, void *context, sd_bus_error *)
{
    SdBusReader reader(message);
    reader.text(); // the interface
    *static_cast<std::string *>(context) += describe(reader.dictionary().value_or(UserInfo()));
    return 0;
}

} // namespace

class BusInterfacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsAreAnsweredAndPerformed_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("events");
        const auto rows = [](const char *object, std::initializer_list<std::array<const char *, 3>> calls) {
            for (const auto &[call, reply, event] : calls)
                QTest::newRow(call)
                    << QStringLiteral("call me.tovanu.Ambertide %1 %2").arg(QLatin1String(object), QLatin1String(call))
                    << QString::fromLatin1(reply) << QString::fromLatin1(event);
        };
        rows(
            "/runner org.kde.krunner1",
            {{"Actions", "a(sss) 0", ""},
             {"Match s 3400",
              R"~(a(sssida{sv}) 1 "k3400" "Set display temperature to 3400K (Halogen)" "me.tovanu.Ambertide" 100 1 0)~",
              ""},
             {"Match s 33",
              R"(a(sssida{sv}) 1 "k3300" "Set display temperature to 3300K" "me.tovanu.Ambertide" 30 0.4 0)", ""},
             {"Run ss k2700 any", "", "2700"},
             {"Run ss k2750 any", "Call failed: There is no such match", ""}});
        rows("/me/tovanu/Ambertide/SearchProvider org.gnome.Shell.SearchProvider2",
             {{"GetInitialResultSet as 2 warm tungsten", R"(as 1 "k2700")", ""},
              {"GetSubsearchResultSet asas 2 k1000 k1900 1 daylight", R"(as 1 "k6500")", ""},
              {"GetResultMetas as 2 k3400 unknown",
               R"~(aa{sv} 1 4 "description" s "Set Color Temperature" "gicon" s "me.tovanu.Ambertide" )~"
               R"~("id" s "k3400" "name" s "3400K (Halogen)")~",
               ""},
              {"ActivateResult sasu k1900 1 candle 0", "", "1900"},
              {"ActivateResult sasu 1900 1 candle 0", "Call failed: There is no such result", ""},
              {"LaunchSearch asu 1 candle 0", "", "launch"}});
        rows("/me/tovanu/Ambertide org.freedesktop.Application",
             {{"ActivateAction sava{sv} k5500 0 0", "", "5500"},
              {"ActivateAction sava{sv} k5550 0 0", "Call failed: There is no such action", ""}});
    }
    void callsAreAnsweredAndPerformed()
    {
        QFETCH(QString, call);
        Exports exports;
        QTEST(busctl(call), "reply");
        QTEST(exports.events.join(u' '), "events");
    }

    void hugeSearchesFindNothing()
    {
        Exports exports;
        const auto call = QStringLiteral("call me.tovanu.Ambertide /me/tovanu/Ambertide/SearchProvider "
                                         "org.gnome.Shell.SearchProvider2 %1 as %2%3");
        QCOMPARE(
            busctl(call.arg(QStringLiteral("GetInitialResultSet")).arg(1).arg(QString(100'000, u'3').prepend(u' '))),
            QStringLiteral("as 0"));
        const auto metas =
            busctl(call.arg(QStringLiteral("GetResultMetas")).arg(9000).arg(QStringLiteral(" k3400").repeated(9000)));
        QVERIFY2(metas.startsWith(QStringLiteral("aa{sv} 64 ")), qPrintable(metas.left(80)));
    }

    void writesChangeWhatIsReadNext_data()
    {
        QTest::addColumn<QString>("reply"); // contains it
        QTest::addColumn<QString>("state"); // and what was announced on the way there
        const auto row = [](const char *write, const char *reply, const char *state) {
            QTest::newRow(write) << QString::fromLatin1(reply) << QString::fromLatin1(state);
        };
        row("Temperature d 3449", "", "d 3400 b false {Temperature = 3400}");
        row("Temperature d 6500", "", "d 6500 b false ");
        row("ScheduleEnabled b true", "", "d 6500 b true {ScheduleEnabled = true}");
        for (const char *write : {"Temperature d 949", "Temperature d 6550", "Temperature d inf", "Temperature d nan"})
            row(write, "The temperature must be between 1000 and 6500 K", "d 6500 b false ");
        row("Temperature i 3400", "Incorrect parameters for property 'Temperature'", "d 6500 b false ");
        row("MinimumTemperature d 500", "Property 'MinimumTemperature' is not writable", "d 6500 b false ");
    }
    void writesChangeWhatIsReadNext()
    {
        QFETCH(QString, reply);
        Exports exports;
        std::string announced;
        const auto match = exports.session.install([&announced](sd_bus *bus) {
            return addMatch(bus, "type='signal',member='PropertiesChanged'", keepChanges, &announced);
        });
        const QString property = QStringLiteral(" me.tovanu.Ambertide /me/tovanu/Ambertide me.tovanu.Ambertide1 ");
        const auto said = busctl(QStringLiteral("set-property") + property + QLatin1String(QTest::currentDataTag()));
        QVERIFY2(reply.isEmpty() ? said.isEmpty() : said.contains(reply), qPrintable(said));
        const auto read =
            busctl(QStringLiteral("get-property") + property + QStringLiteral("Temperature ScheduleEnabled"));
        QTEST(read.simplified() + u' ' + QString::fromStdString(announced), "state");
    }
};

QTEST_GUILESS_MAIN(BusInterfacesTest)
#include "BusInterfaces.moc"
