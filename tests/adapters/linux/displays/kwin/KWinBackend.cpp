#include "adapters/linux/displays/kwin/KWinBackend.h"

#include "adapters/linux/displays/kwin/NightLightTemperature.h"
#include "adapters/linux/displays/kwin/settings/KConfigGroup.h"
#include "adapters/linux/displays/kwin/settings/SettingsFile.h"
#include "support/CapturedConsole.h"
#include "support/ChildProcess.h"
#include "support/PrivateBus.h"
#include "support/busctl.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <poll.h>
#include <sys/prctl.h>

#include <cmath>
#include <csignal>
#include <iostream>

using namespace ambertide;

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

/// Serves KWin's interface in a process of its own, without ramps, but like KWin it makes no change of 50 K or less.
/// "hostile" gives wrong types.
struct StandIn
{
    std::string kind;
    bool isInhibited = false;
    bool isRunning = false;
    int shown = 6500;

    static int answer(sd_bus_message *call, void *context, sd_bus_error *)
    {
        auto &self = *static_cast<StandIn *>(context);
        auto *const bus = sd_bus_message_get_bus(call);
        if (sd_bus_message_is_method_call(call, nullptr, "Suspend") > 0) {
            self.isInhibited = true;
            sd_bus_emit_signal(bus, path, "org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                               "org.kde.KWin.NightLight", 1, "inhibited", "b", 1, 0);
        }
        if (self.kind == "hostile")
            return sd_bus_reply_method_return(call, "a{sv}", 3, "available", "s", "true", "inhibited", "as", 1, "x",
                                              "currentTemperature", "x", INT64_MAX);
        return sd_bus_reply_method_return(call, "a{sv}", 4, "available", "b", int(self.kind != "unavailable"),
                                          "inhibited", "b", int(self.isInhibited), "running", "b", int(self.isRunning),
                                          "currentTemperature", "u", self.shown);
    }
    static int noteChange(sd_bus_message *, void *context, sd_bus_error *)
    {
        auto &self = *static_cast<StandIn *>(context);
        const KConfigGroup settings(*settings_file::read(NightLightLoan::filesOfUser().kwinrc), "NightColor");
        self.isRunning = settings.value("Active") == "true" && !self.isInhibited;
        const int target = self.isRunning ? std::stoi(settings.value("NightTemperature").value_or("4500")) : 6500;
        if (std::abs(target - self.shown) > 50)
            self.shown = target;
        std::cout << "changed" << std::endl;
        return 0;
    }
    void serve()
    {
        const auto bus = openSdBus(SdBusKind::session);
        sd_bus_add_object(bus.get(), nullptr, path, answer, this);
        const auto match = addMatch(bus.get(), "path='/kwinrc'", noteChange, this);
        sd_bus_request_name(bus.get(), "org.kde.KWin", 0);
        std::cout << "ready" << std::endl;
        processUntil(bus.get(), SdBusDeadline::max(), [] { return false; });
    }
};

} // namespace

class KWinBackendTest : public QObject
{
    Q_OBJECT

    using Wait = DisplayBackend::Wait;

    /// A private bus with KWin ("KWin"), a stand-in of that kind or ("") nothing on it.
    struct Session
    {
        QTemporaryDir home;
        std::optional<PrivateBus> bus;
        QProcess kwin;
        CapturedConsole console;
        int told = 0;

        explicit Session(const QString &kind)
        {
            for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
                qputenv(variable, home.path().toLocal8Bit());
            bus.emplace();
            if (kind == QStringLiteral("KWin"))
                kwin.start(QStringLiteral("kwin_wayland"),
                           {QStringLiteral("--virtual"), QStringLiteral("--no-lockscreen"),
                            QStringLiteral("--no-global-shortcuts")});
            else if (!kind.isEmpty())
                kwin.start(QCoreApplication::applicationFilePath(), {QStringLiteral("stand-in"), kind});
            if (!kind.isEmpty() && !QTest::qWaitFor([] { return NightLightService().state().has_value(); }, 20'000))
                qFatal("No Night Light on the private bus");
        }
        ~Session()
        {
            kwin.kill();
            kwin.waitForFinished();
        }
        static int temperature()
        {
            return NightLightService().state().value_or(NightLightService::State{}).temperature;
        }
        static std::string settings()
        {
            return settings_file::read(NightLightLoan::filesOfUser().kwinrc).value_or("unreadable");
        }
        int changesTold()
        {
            kwin.waitForReadyRead(20);
            told += static_cast<int>(kwin.readAll().count("changed"));
            return told;
        }
    };
    /// As the thread of BackendDisplayServices does.
    static void serve(KWinBackend &backend)
    {
        if (const auto due = backend.due(); due && *due <= DisplayBackend::Clock::now())
            backend.process();
        pollfd source{backend.descriptor(), POLLIN, 0};
        if (poll(&source, 1, 1) > 0)
            backend.process();
    }

private Q_SLOTS:
    void temperaturesAreTheNearest()
    {
        struct Row
        {
            float green;
            float blue;
            int temperature; ///< found by trying all of KWin's
        };
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
        const auto refusalIn = [](const char *kind) {
            const Session session(QString::fromLatin1(kind));
            return QByteArray::fromStdString(KWinBackend::refusal());
        };
        QCOMPARE(refusalIn(""), QByteArray("KWin's Night Light is not on the session bus"));
        QCOMPARE(refusalIn("unavailable"), QByteArray("KWin's Night Light is not available for these displays"));
        QCOMPARE(refusalIn("hostile"), QByteArray("KWin's Night Light is not available for these displays"));
        QCOMPARE(refusalIn("good"), QByteArray());
    }

    void nightLightIsDrivenAndGivenBack_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("KWin") << QStringLiteral("KWin");
        QTest::newRow("stand-in") << QStringLiteral("good");
    }
    void nightLightIsDrivenAndGivenBack()
    {
        QFETCH(QString, kind);
        if (kind == QStringLiteral("KWin") && !hasKWin6())
            QSKIP("KWin 6 (package kwin-wayland) is not installed");
        Session session(kind);
        KWinBackend backend(guardianFile);
        QVERIFY(!backend.write({}, warm, Wait::Never));
        QVERIFY(backend.write({}, warm, Wait::Allowed));
        QTRY_COMPARE_WITH_TIMEOUT((serve(backend), Session::temperature()), 2700, 9000);
        backend.write({}, tablesWith(0.6820F, 0.3587F), Wait::Allowed); // 2740: too little for KWin to go there at once
        QTRY_COMPARE_WITH_TIMEOUT((serve(backend), Session::temperature()), 2740, 15'000);
        backend.restore();
        QTRY_COMPARE_WITH_TIMEOUT((serve(backend), Session::temperature()), 6500, 9000);
        QVERIFY(!QByteArray::fromStdString(Session::settings()).contains("NightColor")); // KWin writes other groups

        // All but neutral, from where KWin would not go back by itself.
        for (const auto &tables : {tablesWith(0.952F, 0.9066F), tablesWith(0.9975F, 0.9955F)}) {
            backend.write({}, tables, Wait::Allowed);
            const int target = nearestNightLightTemperature(tables);
            QTRY_COMPARE_WITH_TIMEOUT((serve(backend), Session::temperature()), target, 15'000);
        }
        backend.restore();
        QTRY_COMPARE_WITH_TIMEOUT((serve(backend), Session::temperature()), 6500, 9000);
        QVERIFY(session.console.lines.empty());
    }

    void aDragTellsKWinOnceASecondAndTheLastValueAlways()
    {
        Session session(QStringLiteral("good"));
        KWinBackend backend(guardianFile);
        for (int i = 0; i <= 30; ++i)
            backend.write({}, i % 2 == 0 ? warm : warmer, Wait::Allowed);
        backend.write({}, warmer, Wait::Allowed);
        QTRY_COMPARE((serve(backend), Session::temperature()), 2000);
        QCOMPARE(session.changesTold(), 2);
        backend.write({}, warmer, Wait::Allowed); // changes nothing
        QCOMPARE(session.changesTold(), 2);
    }

    void whatTheUserDoesMeanwhileHolds()
    {
        Session session(QStringLiteral("good"));
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
        Session session(QStringLiteral("good"));
        KWinBackend backend(guardianFile);
        session.bus->freeze();
        backend.write({}, warm, Wait::Allowed);
        QVERIFY(QByteArray::fromStdString(Session::settings()).contains("Constant"));
        session.bus->stop();
        for (int i = 0; i < 10; ++i)
            serve(backend);
        backend.restore();
        QCOMPARE(Session::settings(), std::string());
    }

    void settingsComeBackWhateverEndsTheApplication()
    {
        Session session(QStringLiteral("good"));
        for (const int signal : {SIGTERM, SIGKILL}) {
            QProcess copy;
            copy.start(QCoreApplication::applicationFilePath(), {QStringLiteral("tint")});
            QTRY_COMPARE(Session::temperature(), 2700);
            const int told = signal == SIGTERM ? 0 : 2;
            QTRY_COMPARE(session.changesTold(), told + 1);
            ::kill(static_cast<pid_t>(copy.processId()), signal);
            QTRY_COMPARE(Session::settings(), std::string());
            QTRY_COMPARE(session.changesTold(), told + 2);
            copy.waitForFinished();
        }
        // The guardian dies with it: the next start looks.
        QProcess copy;
        copy.start(QCoreApplication::applicationFilePath(), {QStringLiteral("tint")});
        QTRY_COMPARE(Session::temperature(), 2700);
        const auto process = static_cast<pid_t>(copy.processId());
        ::kill(childOf(process, "AmbertideGuardian"), SIGKILL);
        ::kill(process, SIGKILL);
        copy.waitForFinished();
        QVERIFY(Session::settings() != std::string());
        const KWinBackend next(guardianFile);
        QCOMPARE(Session::settings(), std::string());
    }
};

int main(int argc, char *argv[])
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (argc == 3 && qstrcmp(argv[1], "stand-in") == 0)
        return StandIn{.kind = argv[2]}.serve(), 0;
    if (argc == 2 && qstrcmp(argv[1], "tint") == 0) {
        KWinBackend backend(guardianFile);
        backend.write({}, warm, DisplayBackend::Wait::Allowed);
        return pause();
    }
    prctl(PR_SET_PDEATHSIG, 0);
    const QCoreApplication application(argc, argv);
    KWinBackendTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "KWinBackend.moc"
