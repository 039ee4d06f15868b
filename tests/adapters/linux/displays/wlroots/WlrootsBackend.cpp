#include "adapters/linux/displays/wlroots/WlrootsBackend.h"

#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "support/CapturedConsole.h"
#include "support/GammaCompositor.h"
#include "support/PrivateBus.h"
#include "support/TintingCopy.h"

#include <QStandardPaths>

#include <grp.h>
#include <unistd.h>

using namespace ambertide;
using Kind = GammaCompositor::Kind;

namespace {

constexpr char socketName[] = "wayland-test";

BackendDisplayServices makeServices(const std::string &socket = socketName)
{
    return BackendDisplayServices([socket] {
        return std::make_unique<WlrootsBackend>(socket, AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian");
    });
}

/// sway refuses to run as root.
uid_t swayUser()
{
    constexpr uid_t nobody = 65534;
    return geteuid() == 0 ? nobody : geteuid();
}

} // namespace

class WlrootsBackendTest : public QObject
{
    Q_OBJECT

    const QTemporaryDir m_folder;
    const PrivateBus m_session;
    CapturedConsole m_console;

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
        qputenv("WAYLAND_DISPLAY", socketName);
    }
    void init() { m_console.lines.clear(); }

    void everyCompositorIsTintedOnceAndGivenBack()
    {
        for (const auto kind : {Kind::sway, Kind::niri, Kind::hyprland}) {
            GammaCompositor compositor(kind, socketName);
            for (const auto size : {256U, 1024U, 2U})
                compositor.addOutput(size);
            auto services = makeServices();
            QTRY_COMPARE(services.activeDisplays().size(), 3U);
            for (const float blue : {0.5F, 0.25F}) {
                for (int i = 0; i < 5; ++i)
                    setTint(services, blue);
                for (const std::size_t index : {0U, 1U, 2U})
                    QTRY_VERIFY(compositor.output(index).shows(blue));
            }
            QCOMPARE(compositor.output(0).writes, 2);

            // One that comes is tinted without being asked for, one that goes is forgotten.
            compositor.removeOutput(1);
            const auto added = compositor.addOutput(65'535);
            QTRY_VERIFY(compositor.output(added).shows(0.25F));
            QTRY_COMPARE(services.activeDisplays().size(), 3U);

            services.restoreSystemColours();
            for (const std::size_t index : {std::size_t{0}, std::size_t{2}, added}) {
                QVERIFY(compositor.output(index).isRestored());
                QCOMPARE(compositor.output(index).shown.empty(), kind != Kind::hyprland);
            }
            setTint(services, 0.25F);
            QTRY_VERIFY(compositor.output(0).shows(0.25F));
            QVERIFY(m_console.lines.empty());
        }
    }

    void whatARealClientDoesIsServed()
    {
        const auto client = QStandardPaths::findExecutable(QStringLiteral("wlsunset"));
        if (client.isEmpty())
            QSKIP("wlsunset is not installed");
        for (const auto kind : {Kind::sway, Kind::niri, Kind::hyprland}) {
            m_console.lines.clear();
            GammaCompositor compositor(kind, socketName);
            compositor.addOutput(256);
            QProcess process;
            process.start(client, QStringLiteral("-t 3000 -T 3001 -S 00:00 -s 00:01").split(u' '));
            QTRY_COMPARE(compositor.output(0).shown.size(), 768U);
            QVERIFY(compositor.output(0).shown.back() < 60'000);
            // While another program has the control, that is said once; nothing of what it shows is touched.
            const auto shown = compositor.output(0).shown;
            if (kind != Kind::hyprland) {
                auto services = makeServices();
                QTRY_COMPARE(services.activeDisplays().size(), 1U);
                for (int i = 0; i < 5; ++i)
                    setTint(services, 0.5F);
                QTRY_COMPARE(m_console.lines.size(), 1U);
                QTRY_VERIFY(services.refusal());
                QCOMPARE(compositor.output(0).shown, shown);
            }
            process.kill();
            process.waitForFinished();
        }
    }

    void aRealCompositorWithoutGammaTablesIsSaidToHaveNone()
    {
        const auto sway = QStandardPaths::findExecutable(QStringLiteral("sway"));
        if (sway.isEmpty())
            QSKIP("sway is not installed");
        QTemporaryDir folder;
        QVERIFY(::chown(folder.path().toUtf8().constData(), swayUser(), static_cast<gid_t>(-1)) == 0);
        QProcess process;
        process.setChildProcessModifier([] {
            const auto user = swayUser();
            if (user == geteuid() || (setgroups(0, nullptr) == 0 && setgid(user) == 0 && setuid(user) == 0))
                prctl(PR_SET_PDEATHSIG, SIGKILL);
        });
        process.start(QStringLiteral("env"),
                      {QStringLiteral("XDG_RUNTIME_DIR=") + folder.path(), QStringLiteral("WLR_BACKENDS=headless"),
                       QStringLiteral("WLR_HEADLESS_OUTPUTS=2"), QStringLiteral("WLR_RENDERER=pixman"),
                       QStringLiteral("WLR_LIBINPUT_NO_DEVICES=1"), sway, QStringLiteral("--config"),
                       QStringLiteral("/dev/null")});
        const auto socket = folder.filePath(QStringLiteral("wayland-1")); // the first name that it tries
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(socket), 30'000);
        auto services = makeServices(socket.toStdString());
        QTRY_COMPARE(services.activeDisplays().size(), 2U);
        setTint(services, 0.5F);
        QTRY_VERIFY(services.refusal());
        for (int i = 0; i < 5; ++i)
            setTint(services, 0.5F);
        services.restoreSystemColours();
        QCOMPARE(m_console.lines.size(), 1U);
        QCOMPARE(process.state(), QProcess::Running);
        process.kill();
        process.waitForFinished();
    }

    void aMatrixStandsInWhereHyprlandRefusesTheTables()
    {
        GammaCompositor compositor(Kind::hyprland, socketName);
        compositor.addOutput(256, true);
        auto services = makeServices();
        QTRY_COMPARE(services.activeDisplays().size(), 1U);
        setTint(services, 0.25F);
        QTRY_COMPARE(compositor.output(0).matrix, (std::array{1.0, 0.625, 0.25}));
        QCOMPARE(m_console.lines.size(), 1U);
        services.restoreSystemColours();
        QCOMPARE(compositor.output(0).matrix, (std::array{1.0, 1.0, 1.0}));
        compositor.takeMatrices();
        setTint(services, 0.25F);
        QTRY_VERIFY(services.refusal());
        QCOMPARE(m_console.lines.size(), 2U);
    }

    void brokenCompositorsAreLeftOutAndLostOnesComeBack()
    {
        qputenv("WAYLAND_SOCKET", "0"); // which is the toolkit's
        std::optional<GammaCompositor> compositor;
        compositor.emplace(Kind::sway, socketName);
        for (const auto size : {0U, 1U, 65'536U, 0xFFFF'FFFFU})
            compositor->addOutput(size);
        auto services = makeServices();
        QTRY_COMPARE(services.activeDisplays().size(), 4U); // nobody has asked yet
        setTint(services, 0.5F);
        QTRY_COMPARE(services.activeDisplays().size(), 0U);
        const auto right = compositor->addOutput(256);
        QTRY_VERIFY(compositor->output(right).shows(0.5F));
        compositor.reset();
        QTRY_COMPARE(m_console.lines.size(), 1U);
        compositor.emplace(Kind::niri, socketName);
        compositor->addOutput(256);
        QTRY_VERIFY(compositor->output(0).shows(0.5F));
        QCOMPARE(m_console.lines.size(), 2U); // lost, and there again
        QCOMPARE(qgetenv("WAYLAND_SOCKET"), "0");
        qunsetenv("WAYLAND_SOCKET");
    }

    void aCompositorThatDoesNotAnswerHoldsNobodyUpAndShowsTheNewestTintLater()
    {
        GammaCompositor compositor(Kind::sway, socketName);
        compositor.addOutput(256);
        auto services = makeServices();
        QTRY_VERIFY((setTint(services, 0), compositor.output(0).shows(0)));
        {
            const auto frozen = compositor.freeze();
            // Many more than a socket takes: this ends, or the test's time does.
            for (int step = 1; step < 2000; ++step)
                setTint(services, static_cast<float>(step % 100) / 100);
        }
        setTint(services, 0.625F);
        QTRY_VERIFY(compositor.output(0).shows(0.625F));
    }

    void displaysAreGivenBackByTheGuardianWhereTheCompositorDoesNot()
    {
        for (const auto kind : {Kind::sway, Kind::hyprland}) {
            GammaCompositor compositor(kind, socketName);
            for (const auto size : {256U, 1024U})
                compositor.addOutput(size);
            TintingCopy copy("wlroots");
            copy.show("0.5");
            QTRY_VERIFY(compositor.output(0).shows(0.5) && compositor.output(1).shows(0.5));
            QCOMPARE(copy.end(), kind == Kind::hyprland); // the others need no guardian
            QTRY_VERIFY(compositor.output(0).isRestored() && compositor.output(1).isRestored());
        }
    }

    void itSaysWhyACompositorCannotBeTinted()
    {
        const GammaCompositor compositor(Kind::withoutGammaControl, socketName);
        QCOMPARE(WlrootsBackend::refusal(socketName), "the compositor offers no gamma control");
        QCOMPARE(WlrootsBackend::refusal("/nonexistent"), "the compositor /nonexistent cannot be reached");
    }
};

QTEST_GUILESS_MAIN(WlrootsBackendTest)
#include "WlrootsBackend.moc"
