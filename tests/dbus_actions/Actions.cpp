#include "platform/linux/BusNames.h"
#include "platform/linux/DBusActions.h"
#include "support/BusCaller.h"
#include "support/PrivateBus.h"

#include <QTest>

#include <algorithm>
#include <functional>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char runner[] = "org.kde.krunner1";
constexpr char provider[] = "org.gnome.Shell.SearchProvider2";
constexpr char application[] = "org.freedesktop.Application";
constexpr char invalidArguments[] = "org.freedesktop.DBus.Error.InvalidArgs: ";

/// All that launchers can call, under the application's name, and somebody who calls it.
struct Bench
{
    PrivateBus bus;
    std::vector<std::string> events;
    DBusSession session{SdBusKind::session};
    DBusApplicationObject applicationObject{session, [](const std::string &) {}};
    DBusActions actions{session, applicationObject,
                        [this](ColorTemperature preset) { events.push_back(std::to_string(rawValue(preset))); },
                        [this] { events.push_back("launch"); }};
    BusCaller caller;

    Bench()
    {
        sd_bus *ready = session.readyBus(std::chrono::steady_clock::now() + 20s);
        if (sd_bus_request_name(ready, bus_names::application, 0) < 0)
            qFatal("The name cannot be had");
    }
    template <typename... Arguments>
    std::string runnerCall(const char *member, const char *types, Arguments... arguments)
    {
        return caller.call(bus_names::runnerPath, runner, member, types, arguments...);
    }
    template <typename... Arguments>
    std::string providerCall(const char *member, const char *types, Arguments... arguments)
    {
        return caller.call(bus_names::searchProviderPath, provider, member, types, arguments...);
    }
    std::string activateAction(const char *name)
    {
        return caller.call(bus_names::applicationPath, application, "ActivateAction", "sava{sv}", name, 0, 0);
    }
};

using Call = std::function<std::string(Bench &)>;

} // namespace
Q_DECLARE_METATYPE(Call)

class ActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsAreAnsweredAndPerformed_data()
    {
        QTest::addColumn<Call>("call");
        QTest::addColumn<std::string>("reply");
        QTest::addColumn<std::vector<std::string>>("events");
        const auto row = [](const char *name, Call call, std::string reply, std::vector<std::string> events = {}) {
            QTest::newRow(name) << std::move(call) << std::move(reply) << std::move(events);
        };
        const std::string huge(1'000'000, '3');

        row(
            "KRunner: actions", [](Bench &bench) { return bench.runnerCall("Actions", ""); }, "[]");
        row(
            "KRunner: exact", [](Bench &bench) { return bench.runnerCall("Match", "s", "3400"); },
            "[(k3400, Set display temperature to 3400K (Halogen), me.tovanu.Ambertide, 100, 1, {})]");
        row(
            "KRunner: possible", [](Bench &bench) { return bench.runnerCall("Match", "s", "33"); },
            "[(k3300, Set display temperature to 3300K, me.tovanu.Ambertide, 30, 0.4, {})]");
        row(
            "KRunner: nothing", [](Bench &bench) { return bench.runnerCall("Match", "s", "firefox"); }, "[]");
        row(
            "KRunner: empty", [](Bench &bench) { return bench.runnerCall("Match", "s", ""); }, "[]");
        row(
            "KRunner: huge", [huge](Bench &bench) { return bench.runnerCall("Match", "s", huge.c_str()); }, "[]");
        row("KRunner: run", [](Bench &bench) { return bench.runnerCall("Run", "ss", "k2700", ""); }, "", {"2700"});
        row(
            "KRunner: run what is not there", [](Bench &bench) { return bench.runnerCall("Run", "ss", "k2750", ""); },
            std::string(invalidArguments) + "There is no such match");

        row(
            "GNOME: search",
            [](Bench &bench) { return bench.providerCall("GetInitialResultSet", "as", 2, "warm", "tungsten"); },
            "[k2700]");
        row(
            "GNOME: best first",
            [](Bench &bench) { return bench.providerCall("GetInitialResultSet", "as", 1, "warm"); },
            "[k1000, k1900, k2700, k3400]");
        row(
            "GNOME: another preset than before",
            [](Bench &bench) {
                return bench.providerCall("GetSubsearchResultSet", "asas", 2, "k1000", "k1900", 1, "daylight");
            },
            "[k6500]");
        row(
            "GNOME: nothing", [](Bench &bench) { return bench.providerCall("GetInitialResultSet", "as", 0); }, "[]");
        row(
            "GNOME: huge",
            [huge](Bench &bench) { return bench.providerCall("GetInitialResultSet", "as", 2, "3400", huge.c_str()); },
            "[]");
        row(
            "GNOME: metas, unknown left out",
            [](Bench &bench) { return bench.providerCall("GetResultMetas", "as", 3, "k3400", "unknown", "k1100"); },
            "[{id=k3400, name=3400K (Halogen), description=Set Color Temperature, gicon=me.tovanu.Ambertide}, "
            "{id=k1100, name=1100K, description=Set Color Temperature, gicon=me.tovanu.Ambertide}]");
        row("GNOME: activate",
            [](Bench &bench) { return bench.providerCall("ActivateResult", "sasu", "k1900", 1, "candle", 0); }, "",
            {"1900"});
        row(
            "GNOME: activate what is not there",
            [](Bench &bench) { return bench.providerCall("ActivateResult", "sasu", "1900", 1, "candle", 0); },
            std::string(invalidArguments) + "There is no such result");
        row("GNOME: launch", [](Bench &bench) { return bench.providerCall("LaunchSearch", "asu", 1, "candle", 0); }, "",
            {"launch"});

        row("desktop action", [](Bench &bench) { return bench.activateAction("k5500"); }, "", {"5500"});
        row(
            "unknown desktop action", [](Bench &bench) { return bench.activateAction("k5550"); },
            std::string(invalidArguments) + "There is no such action");
    }
    void callsAreAnsweredAndPerformed()
    {
        QFETCH(Call, call);
        QFETCH(std::vector<std::string>, events);
        Bench bench;
        QTEST(call(bench), "reply");
        bench.runnerCall("Actions", ""); // what the call left to be done is done by now
        QCOMPARE(bench.events, events);
    }

    void endlessListsAreCutShort()
    {
        Bench bench;
        const auto metasOf = [&bench](int count) {
            sd_bus_message *call = nullptr;
            sd_bus_message_new_method_call(bench.caller.bus(), &call, bus_names::application,
                                           bus_names::searchProviderPath, provider, "GetResultMetas");
            const SdBusMessage owner(call);
            sd_bus_message_open_container(call, 'a', "s");
            for (int result = 0; result < count; ++result)
                sd_bus_message_append(call, "s", "k3400");
            sd_bus_message_close_container(call);
            const auto reply = bench.caller.send(call);
            return std::count(reply.begin(), reply.end(), '{');
        };
        QCOMPARE(metasOf(56), 56);
        QVERIFY(metasOf(10'000) < 100);
        QCOMPARE(metasOf(1'000'000), 0);
        QCOMPARE(metasOf(1), 1);
    }
};

QTEST_GUILESS_MAIN(ActionsTest)
#include "Actions.moc"
