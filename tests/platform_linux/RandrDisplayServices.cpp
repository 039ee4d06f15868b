#include "platform/linux/RandrDisplayServices.h"

#include "platform/Console.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QTest>

#include <cmath>
#include <thread>

using namespace ambertide;
using Kind = PrivateXServer::Kind;

namespace {

const std::filesystem::path guardian = AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian";

/// Straight lines up to these levels.
GammaTables slopes(float red, float green, float blue)
{
    GammaTables tables;
    for (std::size_t i = 0; i < GammaTables::size; ++i) {
        const float in = static_cast<float>(i) / 255.0F;
        tables.red[i] = in * red;
        tables.green[i] = in * green;
        tables.blue[i] = in * blue;
    }
    return tables;
}
const GammaTables amber = slopes(1.0F, 0.75F, 0.4F);

bool isSlope(const std::vector<std::uint16_t> &table, double top)
{
    const double step = 65535.0 * top / static_cast<double>(table.size() - 1);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (std::abs(table[i] - step * static_cast<double>(i)) > 1.0)
            return false;
    }
    return !table.empty();
}
bool isAmber(const RandrClient::Ramp &ramp)
{
    return isSlope(ramp[0], 1.0) && isSlope(ramp[1], 0.75) && isSlope(ramp[2], 0.4);
}

/// Returns the displays that were addressed.
std::vector<DisplayIdentifier> tint(DisplayServices &services)
{
    const auto displays = services.activeDisplays();
    services.setTransferTables(displays, amber);
    return displays;
}

} // namespace

class RandrDisplayServicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        console::redirect([this](std::string_view line) { m_lines.emplace_back(line); });
    }
    void cleanup()
    {
        console::redirect({});
        m_lines.clear();
    }

    void everyActiveDisplayIsTintedAndGivenBack_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<int>("displays");
        QTest::newRow("one display") << Kind::framebuffer << 1;
        QTest::newRow("sixteen displays") << Kind::dummy << 16;
    }
    void everyActiveDisplayIsTintedAndGivenBack()
    {
        QFETCH(const Kind, kind);
        QFETCH(const int, displays);
        const PrivateXServer server(kind);
        for (int i = 1; i < displays; ++i)
            server.switchOn(QStringLiteral("DUMMY%1").arg(i));
        RandrClient client(server.display());
        RandrDisplayServices services(server.display(), guardian);

        const auto tinted = tint(services);
        QCOMPARE(tinted.size(), std::size_t(displays));
        for (const auto display : tinted)
            QTRY_VERIFY(isAmber(client.ramp(display)));

        services.restoreSystemColours();
        QVERIFY(client.showsIdentityEverywhere());
        QVERIFY(m_lines.empty());
    }

    void displaysThatComeAndGoAreFollowed()
    {
        const PrivateXServer server(Kind::dummy);
        RandrClient client(server.display());
        RandrDisplayServices services(server.display(), guardian);
        QCOMPARE(tint(services).size(), 1U);

        server.switchOn(QStringLiteral("DUMMY1"));
        QTRY_COMPARE(services.activeDisplays().size(), 2U);
        const auto both = tint(services);
        QTRY_VERIFY(isAmber(client.ramp(both[1])));

        // The second display goes between the list and the write; a third was never there.
        const auto stale = services.activeDisplays();
        server.switchOff(QStringLiteral("DUMMY1"));
        services.setTransferTables(std::vector<DisplayIdentifier>{stale[1], 0xABCDEF, stale[0]}, slopes(1, 0.5F, 0.5F));
        QTRY_COMPARE(services.activeDisplays(), std::vector<DisplayIdentifier>{stale[0]});
        QTRY_VERIFY(isSlope(client.ramp(stale[0])[1], 0.5));

        // What is off by then keeps its table for when it is on again.
        QVERIFY(isSlope(client.ramp(stale[1])[1], 0.5));
        services.restoreSystemColours();
        QVERIFY(client.showsIdentityEverywhere());
    }

    void aServerThatComesAndGoesIsUsedWhileItIsThere()
    {
        PrivateXServer server(Kind::framebuffer);
        server.stop();
        RandrDisplayServices services(server.display(), guardian);
        for (const std::size_t lines : {1U, 3U}) {
            for (int i = 0; i < 3; ++i) {
                tint(services);
                services.restoreSystemColours();
            }
            QCOMPARE(m_lines.size(), lines);

            server.start();
            const auto displays = tint(services);
            QCOMPARE(displays.size(), 1U);
            QTRY_VERIFY(isAmber(RandrClient(server.display()).ramp(displays[0])));
            QCOMPARE(m_lines.size(), lines + 1);
            server.stop();
        }
    }

    void aGuardianThatCannotBeStartedIsSaidOnce()
    {
        const PrivateXServer server(Kind::framebuffer);
        RandrDisplayServices services(server.display(), "/nonexistent/guardian");
        for (int i = 0; i < 3; ++i)
            tint(services);
        QTRY_VERIFY(isAmber(RandrClient(server.display()).ramp(services.activeDisplays()[0])));
        QCOMPARE(m_lines.size(), 1U);
    }

    void threadsDoNotDisturbOneAnother()
    {
        const PrivateXServer server(Kind::framebuffer);
        RandrDisplayServices services(server.display(), guardian);
        {
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
        }
        const auto displays = tint(services);
        QTRY_VERIFY(isAmber(RandrClient(server.display()).ramp(displays.at(0))));
    }

private:
    std::vector<std::string> m_lines;
};

QTEST_GUILESS_MAIN(RandrDisplayServicesTest)
#include "RandrDisplayServices.moc"
