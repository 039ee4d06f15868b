#include "adapters/linux/displays/kwin/KWinBackend.h"

#include "adapters/linux/displays/kwin/NightLightTemperature.h"
#include "adapters/linux/displays/kwin/settings/KConfigGroup.h"
#include "adapters/linux/displays/kwin/settings/SettingsFile.h"
#include "support/CapturedConsole.h"
#include "support/PrivateBus.h"
#include "support/Tint.h"
#include "support/TintingCopy.h"
#include "support/busctl.h"

#include <poll.h>

#include <cmath>
#include <thread>
#include <tuple>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char guardianFile[] = AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian";
constexpr char path[] = "/org/kde/KWin/NightLight";

GammaTables tablesWith(float green, float blue)
{
    GammaTables tables{};
    tables.red.fill(1);
    tables.green.fill(green);
    tables.blue.fill(blue);
    return tables;
}
const GammaTables warm = tablesWith(0.6765F, 0.3479F);   // KWin's 2700
const GammaTables warmer = tablesWith(0.5436F, 0.0868F); // KWin's 2000

bool hasKWin6()
{
    QProcess process;
    process.start(QStringLiteral("kwin_wayland"), {QStringLiteral("--version")});
    return process.waitForFinished() && process.readAll().startsWith("kwin 6");
}

/// Serves KWin's interface without ramps, but like KWin it makes no change of 50 K or less.
class StandIn
{
public:
    enum class Kind { good, unavailable, hostile };

    explicit StandIn(Kind kind) : m_kind(kind)
    {
        sd_bus_add_object(m_bus.get(), nullptr, path, answer, this);
        sd_bus_request_name(m_bus.get(), "org.kde.KWin", 0);
        m_thread = std::jthread([this](const std::stop_token &stop) {
            while (!stop.stop_requested() && sd_bus_is_open(m_bus.get()) > 0)
                processUntil(m_bus.get(), std::chrono::steady_clock::now() + 5ms, [] { return false; });
        });
    }

    std::atomic<int> changes = 0; ///< told of

private:
    static int answer(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &self = *static_cast<StandIn *>(context);
        if (sd_bus_message_is_method_call(call, nullptr, "Suspend") > 0) {
            self.m_isInhibited = true;
            sd_bus_emit_signal(sd_bus_message_get_bus(call), path, "org.freedesktop.DBus.Properties",
                               "PropertiesChanged", "sa{sv}as", "org.kde.KWin.NightLight", 1, "inhibited", "b", 1, 0);
        }
        if (self.m_kind == Kind::hostile)
            return sd_bus_reply_method_return(call, "a{sv}", 3, "available", "s", "true", "inhibited", "as", 1, "x",
                                              "currentTemperature", "x", INT64_MAX);
        return sd_bus_reply_method_return(call, "a{sv}", 4, "available", "b", int(self.m_kind == Kind::good),
                                          "inhibited", "b", int(self.m_isInhibited), "running", "b",
                                          int(self.m_isRunning), "currentTemperature", "u", self.m_shown);
    }
    static int noteChange(sd_bus_message *, void *context, sd_bus_error *)
    {
        auto &self = *static_cast<StandIn *>(context);
        const KConfigGroup settings(*settings_file::read(NightLightLoan::filesOfUser().kwinrc), "NightColor");
        self.m_isRunning = settings.value("Active") == "true" && !self.m_isInhibited;
        const int target = self.m_isRunning ? std::stoi(settings.value("NightTemperature").value_or("4500")) : 6500;
        if (std::abs(target - self.m_shown) > 50)
            self.m_shown = target;
        ++self.changes;
        return 0;
    }

    const Kind m_kind;
    const SdBusConnection m_bus = openSdBus(SdBusKind::session);
    const SdBusSlot m_match = addMatch(m_bus.get(), "path='/kwinrc'", noteChange, this);
    bool m_isInhibited = false;
    bool m_isRunning = false;
    int m_shown = 6500;
    std::jthread m_thread;
};

/// A private bus and files of its own, with a stand-in of that kind.
struct Session
{
    explicit Session(std::optional<StandIn::Kind> kind = StandIn::Kind::good)
    {
        for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
            qputenv(variable, home.path().toLocal8Bit());
        if (kind)
            standIn.emplace(*kind);
    }

    const QTemporaryDir home;
    PrivateBus bus;
    CapturedConsole console;
    std::optional<StandIn> standIn;

    static int temperature() { return NightLightService().state().value_or(NightLightState{}).temperature; }
    static std::string settings()
    {
        return settings_file::read(NightLightLoan::filesOfUser().kwinrc).value_or("unreadable");
    }
};

/// As the thread of BackendDisplayServices does.
void serve(KWinBackend &backend)
{
    if (const auto due = backend.due(); due && *due <= DisplayBackend::Clock::now())
        backend.process();
    pollfd source{backend.descriptor(), POLLIN, 0};
    if (poll(&source, 1, 1) > 0)
        backend.process();
}

} // namespace

class KWinBackendTest : public QObject
{
    Q_OBJECT

    using Wait = DisplayBackend::Wait;

private Q_SLOTS:
    void temperaturesAreTheNearest()
    {
        using Row = std::tuple<float, float, int>; // green, blue, and the temperature found by trying all of KWin's
        for (const auto &[green, blue, temperature] :
             {Row{0.53674F, 0.05455F, 1963}, Row{0.65381F, 0.34279F, 2654}, Row{0.74373F, 0.53014F, 3376},
              Row{0.85307F, 0.73505F, 4457}, Row{0.93135F, 0.87155F, 5418}, Row{0.96529F, 0.92878F, 5886},
              Row{1.1F, 1.1F, 6500}, Row{0, 0, 1900}, Row{NAN, NAN, 6500}}) {
            const int nearest = nearestNightLightTemperature(tablesWith(green, blue));
            QVERIFY2(std::abs(nearest - temperature) <= 5, QByteArray::number(nearest));
        }
    }

    void sessionsWithoutNightLightAreRefused()
    {
        const auto refusalIn = [](std::optional<StandIn::Kind> kind) {
            const Session session(kind);
            return KWinBackend::refusal();
        };
        QCOMPARE(refusalIn({}), "KWin's Night Light is not on the session bus");
        QCOMPARE(refusalIn(StandIn::Kind::unavailable), "KWin's Night Light is not available for these displays");
        QCOMPARE(refusalIn(StandIn::Kind::hostile), "KWin's Night Light is not available for these displays");
        QCOMPARE(refusalIn(StandIn::Kind::good), "");
    }

    void nightLightIsDrivenAndGivenBack()
    {
        for (const bool isReal : {false, true}) {
            if (isReal && !hasKWin6())
                QSKIP("KWin 6 (package kwin-wayland) is not installed");
            Session session(isReal ? std::nullopt : std::optional(StandIn::Kind::good));
            QProcess kwin;
            if (isReal)
                kwin.start(QStringLiteral("kwin_wayland"),
                           QStringLiteral("--virtual --no-lockscreen --no-global-shortcuts").split(u' '));
            QTRY_VERIFY_WITH_TIMEOUT(NightLightService().state(), 20'000);
            KWinBackend backend(guardianFile);
            QVERIFY(!backend.write({}, warm, Wait::Never));
            // 2740 is too little of a change for KWin to go there at once, and the last all but neutral, from where it
            // would not go back by itself.
            const std::vector<GammaTables> roads[]{{warm, tablesWith(0.6820F, 0.3587F)},
                                                   {tablesWith(0.952F, 0.9066F), tablesWith(0.9975F, 0.9955F)}};
            for (const auto &road : roads) {
                for (const auto &tables : road) {
                    QVERIFY(backend.write({}, tables, Wait::Allowed));
                    const int target = nearestNightLightTemperature(tables);
                    QTRY_COMPARE_WITH_TIMEOUT((serve(backend), Session::temperature()), target, 15'000);
                }
                backend.restore();
                QTRY_COMPARE_WITH_TIMEOUT((serve(backend), Session::temperature()), 6500, 9000);
                QVERIFY(
                    !QByteArray::fromStdString(Session::settings()).contains("NightColor")); // KWin writes other groups
            }
            QVERIFY(session.console.lines.empty());
            kwin.kill();
            kwin.waitForFinished();
        }
    }

    void aDragTellsKWinOnceASecondAndTheLastValueAlways()
    {
        Session session;
        KWinBackend backend(guardianFile);
        for (int i = 0; i <= 30; ++i)
            backend.write({}, i % 2 == 0 ? warm : warmer, Wait::Allowed);
        backend.write({}, warmer, Wait::Allowed);
        QTRY_COMPARE((serve(backend), Session::temperature()), 2000);
        QCOMPARE(session.standIn->changes.load(), 2);
        backend.write({}, warmer, Wait::Allowed); // changes nothing
        QCOMPARE(session.standIn->changes.load(), 2);
    }

    void whatTheUserDoesMeanwhileHolds()
    {
        Session session;
        KWinBackend backend(guardianFile);
        backend.write({}, warm, Wait::Allowed);
        backend.write({}, warmer, Wait::Allowed); // is still to come
        const std::string theirs = "[NightColor]\nActive=false\n";
        const auto &file = NightLightLoan::filesOfUser().kwinrc;
        QVERIFY(settings_file::replace(file, Session::settings(), theirs));
        busctl(QStringLiteral("emit /kwinrc org.kde.kconfig.notify ConfigChanged a{saay} 0"));
        QTRY_COMPARE((serve(backend), session.console.lines.size()), 1U);
        QVERIFY(!backend.due());
        backend.restore();
        QCOMPARE(Session::settings(), theirs);

        backend.write({}, warm, Wait::Allowed); // the next target is wanted again
        QTRY_COMPARE((serve(backend), Session::temperature()), 2700);
        busctl(QStringLiteral("call org.kde.KWin %1 org.kde.KWin.NightLight Suspend").arg(QLatin1String(path)));
        QTRY_COMPARE((serve(backend), session.console.lines.size()), 2U);
        QVERIFY(backend.tintRefusal());
        backend.restore();
        QVERIFY(!backend.tintRefusal());
        QCOMPARE(Session::settings(), theirs);
        QCOMPARE(session.console.lines.size(), 2U);
    }

    void aBusThatIsStuckOrGoneHoldsNobodyUp()
    {
        Session session;
        KWinBackend backend(guardianFile);
        session.bus.freeze();
        backend.write({}, warm, Wait::Allowed);
        QVERIFY(QByteArray::fromStdString(Session::settings()).contains("Constant"));
        session.bus.stop();
        for (int i = 0; i < 10; ++i)
            serve(backend);
        backend.restore();
        QCOMPARE(Session::settings(), std::string());
    }

    void settingsComeBackWhateverEndsTheApplication()
    {
        Session session;
        for (const bool isPowerCut : {false, true}) {
            TintingCopy copy("kwin");
            copy.show("0.5");
            QTRY_COMPARE(Session::temperature(), nearestNightLightTemperature(tint(0.5)));
            if (isPowerCut) {
                ::kill(copy.process(), SIGSTOP);
                ::kill(copy.guardian(), SIGKILL);
            }
            copy.end();
            if (isPowerCut) {
                QVERIFY(Session::settings() != std::string());
                const KWinBackend next(guardianFile);
            }
            QTRY_COMPARE(Session::settings(), std::string());
            QTRY_COMPARE(Session::temperature(), 6500);
        }
    }
};

QTEST_GUILESS_MAIN(KWinBackendTest)
#include "KWinBackend.moc"
