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

} // namespace

class BusInterfacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsAreAnsweredAndPerformed()
    {
        const auto *const runner = "/runner org.kde.krunner1";
        const auto *const search = "/me/tovanu/Ambertide/SearchProvider org.gnome.Shell.SearchProvider2";
        const auto *const application = "/me/tovanu/Ambertide org.freedesktop.Application";
        Exports exports;
        const auto row = [&exports](const char *object, const char *call, const char *reply, const char *event = "") {
            exports.events.clear();
            const auto said = busctl(
                QStringLiteral("call me.tovanu.Ambertide %1 %2").arg(QLatin1String(object), QLatin1String(call)));
            QCOMPARE(said, QLatin1String(reply));
            QCOMPARE(exports.events.join(u' '), QLatin1String(event));
        };
        row(runner, "Match s 3400",
            R"~(a(sssida{sv}) 1 "applications:me.tovanu.Ambertide.desktop?action=k3400" "Set display temperature to )~"
            R"~(3400K (Halogen)" "me.tovanu.Ambertide" 100 1 0)~");
        row(runner, "Run ss applications:me.tovanu.Ambertide.desktop?action=k2700 any", "", "2700");
        row(runner, "Run ss applications:me.tovanu.Ambertide.desktop?action=k2750 any",
            "Call failed: There is no such match");
        row(search, "GetInitialResultSet as 2 warm tungsten", R"(as 1 "k2700")");
        row(search, "GetSubsearchResultSet asas 2 k1000 k1900 1 daylight", R"(as 1 "k6500")");
        row(search, "GetResultMetas as 2 k3400 unknown",
            R"~(aa{sv} 1 4 "description" s "Set Color Temperature" "gicon" s "me.tovanu.Ambertide" )~"
            R"~("id" s "k3400" "name" s "3400K (Halogen)")~");
        row(search, "ActivateResult sasu k1900 1 candle 0", "", "1900");
        row(search, "ActivateResult sasu 1900 1 candle 0", "Call failed: There is no such result");
        row(search, "LaunchSearch asu 1 candle 0", "", "launch");
        row(application, "ActivateAction sava{sv} k5500 0 0", "", "5500");
        row(application, "ActivateAction sava{sv} k5550 0 0", "Call failed: There is no such action");
        // Huge searches are cut short.
        const auto call = QStringLiteral("call me.tovanu.Ambertide ") + QLatin1String(search);
        QCOMPARE(busctl(call + QStringLiteral(" GetInitialResultSet as 1 ") + QString(100'000, u'3')),
                 QStringLiteral("as 0"));
        const auto metas =
            busctl(call + QStringLiteral(" GetResultMetas as 9000") + QStringLiteral(" k3400").repeated(9000));
        QVERIFY2(metas.startsWith(QStringLiteral("aa{sv} 64 ")), qPrintable(metas.left(80)));
    }

    void writesChangeWhatIsReadNext()
    {
        Exports exports;
        std::string announced;
        const auto signals = exports.session.match("type='signal',member='PropertiesChanged'", [&](auto *signal) {
            SdBusReader reader(signal);
            reader.text(); // the interface
            announced += describe(reader.dictionary().value_or(UserInfo()));
        });
        const QString property = QStringLiteral(" me.tovanu.Ambertide /me/tovanu/Ambertide me.tovanu.Ambertide1 ");
        const auto row = [&](const char *write, const char *reply, const char *state) {
            announced.clear();
            const auto said = busctl(QStringLiteral("set-property") + property + QLatin1String(write));
            QVERIFY2(*reply == 0 ? said.isEmpty() : said.contains(QLatin1String(reply)), write);
            const auto read =
                busctl(QStringLiteral("get-property") + property + QStringLiteral("Temperature ScheduleEnabled"));
            QCOMPARE(read.simplified() + u' ' + QString::fromStdString(announced), QLatin1String(state));
        };
        const auto outOfRange = "The temperature must be between 1000 and 6500 K";
        row("Temperature d 6500", "", "d 6500 b false ");
        row("ScheduleEnabled b true", "", "d 6500 b true {ScheduleEnabled = true}");
        row("Temperature d 6550", outOfRange, "d 6500 b true ");
        row("Temperature d nan", outOfRange, "d 6500 b true ");
        row("Temperature i 3400", "Incorrect parameters for property 'Temperature'", "d 6500 b true ");
        row("MinimumTemperature d 500", "Property 'MinimumTemperature' is not writable", "d 6500 b true ");
        row("Temperature d 3449", "", "d 3400 b false {ScheduleEnabled = false}{Temperature = 3400}");
    }
};

QTEST_GUILESS_MAIN(BusInterfacesTest)
#include "BusInterfaces.moc"
