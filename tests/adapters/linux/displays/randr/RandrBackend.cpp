#include "adapters/linux/displays/randr/RandrBackend.h"

#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "support/CapturedConsole.h"
#include "support/PrivateColord.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"
#include "support/TintingCopy.h"

#include <thread>

using namespace ambertide;

namespace {

BackendDisplayServices servicesOf(const PrivateXServer &server)
{
    return BackendDisplayServices(
        [display = server.display()] { return std::make_unique<RandrBackend>(display, "/nonexistent/guardian"); });
}

} // namespace

class RandrBackendTest : public QObject
{
    Q_OBJECT

    const PrivateBus m_session;
    const PrivateXServer m_server{PrivateXServer::Kind::framebuffer};
    RandrClient m_client{m_server.display()};
    const xcb_randr_crtc_t m_display = m_client.crtcs().front();

    /// Red, green and blue at half the level.
    std::array<int, 3> shown()
    {
        const auto levels = m_client.levels(m_display);
        return {levels[128], levels[256 + 128], levels[512 + 128]};
    }

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("DISPLAY", QByteArray::fromStdString(m_server.display()));
        qunsetenv("WAYLAND_DISPLAY");
    }

    void displaysThatWereGivenBackAreLeftAlone()
    {
        TintingCopy copy("randr");
        copy.show("0.5");
        QTRY_VERIFY(m_client.shows(0.5)); // and it has a guardian
        copy.show("1");
        m_server.xrandr(QStringLiteral("--output screen --gamma 0.5:0.8:0.9"));
        const auto foreign = m_client.levels(m_display);
        QVERIFY(copy.end());
        QCOMPARE(m_client.levels(m_display), foreign);
    }

    void aCalibrationIsGivenBackAndFollowed()
    {
        if (!PrivateColord::isInstalled())
            QSKIP("colord is not installed");
        PrivateColord colord;
        QVERIFY(colord.start());
        auto display = colord.addDisplay(QStringLiteral("screen"));
        constexpr std::array identity{32896, 32896, 32896};
        constexpr std::array curves{16513, 23307, 32896};       // raised to the powers of calibrationGamma
        constexpr std::array tintedCurves{16513, 15138, 16448}; // tinted first
        colord.setProfile(display, colourProfile(true));
        colord.removeDisplay(display);
        TintingCopy copy("randr");
        copy.show("0.5");
        QTRY_VERIFY(m_client.shows(0.5));
        display = colord.addDisplay(QStringLiteral("screen"));
        QTRY_COMPARE(shown(), tintedCurves);
        copy.show("1");
        QCOMPARE(shown(), curves);
        colord.setProfile(display, colourProfile(false));
        QTRY_COMPARE(shown(), identity);
        colord.setProfile(display, colourProfile(true));
        QTRY_COMPARE(shown(), curves);

        copy.show("0.5");
        QTRY_COMPARE(shown(), tintedCurves);
        QVERIFY(copy.end());
        QCOMPARE(shown(), curves);
    }

    void theNewestCopyHasTheDisplaysAndAGuardian()
    {
        TintingCopy old("randr");
        old.show("0.5");
        QTRY_VERIFY(old.guardian() > 0);
        {
            TintingCopy brief("randr");
            for (const auto *level : {"0.5", "1", "0.25"})
                brief.show(level);
            QTRY_VERIFY(m_client.shows(0.25));
            old.show("0.75");
            old.show("1");
            QVERIFY(m_client.shows(0.25));
            QVERIFY(brief.end());
            QVERIFY(m_client.showsIdentityEverywhere());
        }
        m_client.takeSelection("_ME_TOVANU_AMBERTIDE"); // a stranger's claim does not count
        old.show("0.5");
        QTRY_VERIFY(m_client.shows(0.5));
        TintingCopy young("randr");
        young.show("0.25");
        QTRY_VERIFY(young.guardian() > 0);
        const auto youngGuardian = young.guardian();
        QVERIFY(old.end());
        QTRY_VERIFY(m_client.shows(0.25));

        kill(youngGuardian, SIGKILL); // is replaced at once
        QTRY_VERIFY(young.guardian() != 0 && young.guardian() != youngGuardian);
        const auto secondGuardian = young.guardian();
        kill(secondGuardian, SIGSTOP); // takes effect some time later, and it is replaced with the next write
        QTRY_VERIFY((young.show("0.5"), young.guardian() != 0 && young.guardian() != secondGuardian));
        young.show("1");
        kill(young.guardian(), SIGKILL); // is not replaced while nothing is tinted, and its channel not watched
        QTRY_COMPARE(young.guardian(), 0);
        QTRY_VERIFY((young.show("0.5"), young.guardian() > 0));
        m_client.takeSelection("_ME_TOVANU_AMBERTIDE");
        QVERIFY(young.end(true));
        QVERIFY(m_client.showsIdentityEverywhere());
    }

    void aServerThatComesAndGoesIsUsedByAllThreadsWhileItIsThere()
    {
        PrivateXServer server(PrivateXServer::Kind::framebuffer);
        RandrBackend backend(server.display(), "/nonexistent/guardian");
        server.stop();
        backend.restore();
        backend.process();
        QVERIFY(!backend.due()); // or its thread would never sleep
        const CapturedConsole console;
        auto services = servicesOf(server);
        const auto tintOnThreads = [&services] {
            std::vector<std::jthread> threads;
            for (int i = 0; i < 4; ++i) {
                threads.emplace_back([&services, i] {
                    for (int step = 0; step < 50; ++step) {
                        setTint(services, 0.5);
                        if (i == 0)
                            services.restoreSystemColours();
                    }
                });
            }
        };
        // Lines that it cannot be reached and that it can, and one about the guardian, which cannot be started.
        for (const auto &[linesWithout, linesWith] : {std::pair(1U, 3U), {4U, 5U}}) {
            tintOnThreads();
            QCOMPARE(console.lines.size(), linesWithout);
            server.start();
            tintOnThreads();
            RandrClient client(server.display());
            setTint(services, 0.5);
            QTRY_VERIFY(client.shows(0.5));
            services.restoreSystemColours();
            QVERIFY(client.showsIdentityEverywhere());
            QCOMPARE(console.lines.size(), linesWith);
            server.stop();
        }
    }

    void aDisplayThatIsSwitchedOnIsTintedWithoutBeingAskedForAgain()
    {
        const CapturedConsole console;
        const PrivateXServer server(PrivateXServer::Kind::dummy);
        auto services = servicesOf(server);
        services.restoreSystemColours();                                                   // and it has connected
        services.setTransferTables(std::array<DisplayIdentifier, 1>{0xABCDEF}, tint(0.5)); // no longer there
        setTint(services, 0.5);
        RandrClient client(server.display());
        for (const bool isOn : {true, false, true}) {
            const auto change = isOn ? &PrivateXServer::switchOn : &PrivateXServer::switchOff;
            (server.*change)(QStringLiteral("DUMMY1"));
            QTRY_COMPARE(services.activeDisplays().size(), isOn ? 2U : 1U);
            QTRY_VERIFY(client.shows(0.5));
        }
        services.restoreSystemColours();
        QVERIFY(client.showsIdentityEverywhere());
    }

    void aServerThatDoesNotAnswerHoldsNobodyUpAndShowsTheNewestTintLater()
    {
        const CapturedConsole console;
        auto services = servicesOf(m_server);
        services.restoreSystemColours();
        m_server.suspend();
        // Many more than a socket's buffer takes: this ends, or the test's time does.
        for (int step = 0; step < 2000; ++step)
            setTint(services, 0.5);
        services.restoreSystemColours();
        setTint(services, 0.25);
        m_server.resume();
        QTRY_VERIFY(m_client.shows(0.25));
    }
};

QTEST_GUILESS_MAIN(RandrBackendTest)
#include "RandrBackend.moc"
