#include "platform/linux/RandrDisplayServices.h"

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

class RandrDisplayServicesTest : public QObject
{
    Q_OBJECT

    const std::filesystem::path m_guardian = AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian";

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

    void aServerThatComesAndGoesIsUsedWhileItIsThere()
    {
        const CapturedConsole console;
        PrivateXServer server(PrivateXServer::Kind::framebuffer);
        server.stop();
        RandrDisplayServices services(server.display(), m_guardian);
        for (const std::size_t lines : {1U, 3U}) {
            for (int i = 0; i < 3; ++i) {
                tint(services);
                services.restoreSystemColours();
            }
            QCOMPARE(console.lines.size(), lines);
            server.start();
            RandrClient client(server.display());
            const auto displays = tint(services);
            QCOMPARE(displays.size(), 1U);
            QTRY_VERIFY(isTinted(client.ramp(displays[0])));
            services.restoreSystemColours();
            QVERIFY(client.showsIdentityEverywhere());
            QCOMPARE(console.lines.size(), lines + 1);
            server.stop();
        }
    }

    void threadsTintWithoutAGuardianWhichIsSaidOnce()
    {
        const CapturedConsole console;
        const PrivateXServer server(PrivateXServer::Kind::framebuffer);
        RandrDisplayServices services(server.display(), "/nonexistent/guardian");
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
        threads.clear();
        const auto display = tint(services).at(0);
        QTRY_VERIFY(isTinted(RandrClient(server.display()).ramp(display)));
        QCOMPARE(console.lines.size(), 1U);
    }
};

QTEST_GUILESS_MAIN(RandrDisplayServicesTest)
#include "RandrDisplayServices.moc"
