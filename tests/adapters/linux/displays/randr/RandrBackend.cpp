#include "adapters/linux/displays/randr/RandrBackend.h"

#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "adapters/linux/displays/shared/GammaRamp.h"
#include "support/CapturedConsole.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QTest>

#include <cmath>
#include <thread>

using namespace ambertide;

namespace {

/// What red, green and blue become at a level from 0 to 1: a rising, a bent and a falling line.
constexpr std::array<float (*)(float), 3> curves{
    [](float in) { return 0.5F * in; },
    [](float in) { return std::min(in, 100 / 255.0F); },
    [](float in) { return 1 - in; },
};

GammaTables tintTables()
{
    GammaTables tables;
    for (std::size_t i = 0; i < GammaTables::size; ++i) {
        const float in = static_cast<float>(i) / 255;
        tables.red[i] = curves[0](in);
        tables.green[i] = curves[1](in);
        tables.blue[i] = curves[2](in);
    }
    return tables;
}

BackendDisplayServices servicesOf(const PrivateXServer &server)
{
    return BackendDisplayServices(
        [display = server.display()] { return std::make_unique<RandrBackend>(display, "/nonexistent/guardian"); });
}

std::vector<DisplayIdentifier> tint(DisplayServices &services)
{
    auto displays = services.activeDisplays();
    displays.insert(displays.begin(), 0xABCDEF); // as one that is no longer there
    services.setTransferTables(displays, tintTables());
    displays.erase(displays.begin());
    return displays;
}

bool isTinted(const RandrClient::Ramp &ramp)
{
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (std::size_t i = 0; i < ramp[channel].size(); ++i) {
            const auto in = static_cast<float>(i) / static_cast<float>(ramp[channel].size() - 1);
            if (std::abs(ramp[channel][i] - 65535 * curves[channel](in)) > 1)
                return false;
        }
    }
    return true;
}

} // namespace

class RandrBackendTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tablesAreSpreadOverRampsOfOtherSizes()
    {
        for (const std::uint16_t size : std::initializer_list<std::uint16_t>{2, 3, 1024, 16384}) {
            const GammaRamp ramp(tintTables(), size);
            const auto table = [size](const auto *levels) { return std::vector(levels, levels + size); };
            QVERIFY(isTinted({table(ramp.red()), table(ramp.green()), table(ramp.blue())}));
            const auto identity = GammaRamp::identity(size);
            for (int i = 0; i < size; ++i)
                QCOMPARE(identity.blue()[i], std::lround(65535.0 * i / (size - 1)));
        }
    }

    void aServerThatComesAndGoesIsUsedByAllThreadsWhileItIsThere()
    {
        const CapturedConsole console;
        PrivateXServer server(PrivateXServer::Kind::framebuffer);
        RandrBackend backend(server.display(), "/nonexistent/guardian");
        server.stop();
        backend.restore();
        backend.process();
        QVERIFY(!backend.due()); // or its thread would never sleep
        auto services = servicesOf(server);
        const auto tintOnThreads = [&services] {
            std::vector<std::jthread> threads;
            for (int i = 0; i < 4; ++i) {
                threads.emplace_back([&services, i] {
                    for (int step = 0; step < 50; ++step) {
                        tint(services);
                        if (i == 0)
                            services.restoreSystemColours();
                    }
                });
            }
        };
        for (const std::size_t linesMore : {2U, 1U}) { // one of them about the guardian, which cannot be started
            tintOnThreads();
            const auto lines = console.lines.size();
            server.start();
            tintOnThreads();
            RandrClient client(server.display());
            const auto displays = tint(services);
            QTRY_VERIFY(isTinted(client.ramp(displays[0])));
            services.restoreSystemColours();
            QVERIFY(client.showsIdentityEverywhere());
            QCOMPARE(console.lines.size(), lines + linesMore);
            server.stop();
        }
    }

    void aDisplayThatIsSwitchedOnIsTintedWithoutBeingAskedForAgain()
    {
        const CapturedConsole console;
        const PrivateXServer server(PrivateXServer::Kind::dummy);
        auto services = servicesOf(server);
        services.restoreSystemColours(); // and it has connected
        tint(services);
        RandrClient client(server.display());
        for (const bool isOn : {true, false, true}) {
            const auto change = isOn ? &PrivateXServer::switchOn : &PrivateXServer::switchOff;
            (server.*change)(QStringLiteral("DUMMY1"));
            QTRY_COMPARE(services.activeDisplays().size(), isOn ? 2U : 1U);
            for (const auto display : client.activeCrtcs())
                QTRY_VERIFY(isTinted(client.ramp(display)));
        }
    }

    void aServerThatDoesNotAnswerHoldsNobodyUpAndShowsTheNewestTintLater()
    {
        const CapturedConsole console;
        const PrivateXServer server(PrivateXServer::Kind::framebuffer);
        auto services = servicesOf(server);
        services.restoreSystemColours();
        server.suspend();
        // Many more than a socket's buffer takes: this ends, or the test's time does.
        for (int step = 0; step < 2000; ++step)
            services.setTransferTables(services.activeDisplays(), GammaTables{});
        services.restoreSystemColours();
        const auto displays = tint(services);
        server.resume();
        RandrClient client(server.display());
        QTRY_VERIFY(isTinted(client.ramp(displays[0])));
    }
};

QTEST_GUILESS_MAIN(RandrBackendTest)
#include "RandrBackend.moc"
