#include "adapters/linux/displays/wlroots/WlrootsBackend.h"

#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "support/CapturedConsole.h"
#include "support/ChildProcess.h"
#include "support/GammaCompositor.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <iostream>

using namespace ambertide;
using Kind = GammaCompositor::Kind;

Q_DECLARE_METATYPE(ambertide::GammaCompositor::Kind)

namespace {

GammaTables tables(float blue)
{
    GammaTables tables;
    for (std::size_t i = 0; i < GammaTables::size; ++i)
        tables.red[i] = static_cast<float>(i) / 255;
    tables.green = tables.red;
    tables.blue.fill(blue);
    return tables;
}

std::unique_ptr<DisplayBackend> backendOf(const std::string &socket)
{
    return std::make_unique<WlrootsBackend>(socket, AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian");
}

BackendDisplayServices servicesOf(const std::string &socket)
{
    return BackendDisplayServices([socket] { return backendOf(socket); });
}

void tint(DisplayServices &services, float blue)
{
    services.setTransferTables(services.activeDisplays(), tables(blue));
}

bool shows(GammaCompositor &compositor, std::size_t index, float blue)
{
    const auto output = compositor.output(index);
    const GammaRamp expected(tables(blue), static_cast<std::uint16_t>(output.size));
    return std::ranges::equal(output.shown, expected.levels());
}

bool showsIdentity(const GammaCompositor::Output &output)
{
    const auto identity = GammaRamp::identity(static_cast<std::uint16_t>(output.size));
    return output.shown.empty() || std::ranges::equal(output.shown, identity.levels());
}

/// A copy of the application that tints until it is killed.
int runCopy(const char *socket)
{
    BackendDisplayServices services([socket] { return backendOf(socket); });
    services.restoreSystemColours(); // and it has connected
    tint(services, 0.5F);
    return std::cin.get();
}

} // namespace

class WlrootsBackendTest : public QObject
{
    Q_OBJECT

    const QTemporaryDir m_folder;
    const std::string m_socket = m_folder.filePath(QStringLiteral("wayland")).toStdString();

private Q_SLOTS:
    void everyCompositorIsTintedOnceAndGivenBack_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::newRow("sway") << Kind::sway;
        QTest::newRow("niri") << Kind::niri;
        QTest::newRow("Hyprland") << Kind::hyprland;
    }
    void everyCompositorIsTintedOnceAndGivenBack()
    {
        QFETCH(Kind, kind);
        const CapturedConsole console;
        GammaCompositor compositor(kind, m_socket);
        for (const auto size : {256U, 1024U, 2U})
            compositor.addOutput(size);
        auto services = servicesOf(m_socket);
        QTRY_COMPARE(services.activeDisplays().size(), 3U);
        for (const float blue : {0.5F, 0.25F}) {
            for (int i = 0; i < 5; ++i)
                tint(services, blue);
            for (const std::size_t index : {0U, 1U, 2U})
                QTRY_VERIFY(shows(compositor, index, blue));
        }
        QCOMPARE(compositor.output(0).writes, 2);

        // One that comes is tinted without being asked for, one that goes is forgotten.
        compositor.removeOutput(1);
        const auto added = compositor.addOutput(4096);
        QTRY_VERIFY(shows(compositor, added, 0.25F));
        QTRY_COMPARE(services.activeDisplays().size(), 3U);

        services.restoreSystemColours();
        for (const std::size_t index : {std::size_t{0}, std::size_t{2}, added}) {
            QVERIFY(showsIdentity(compositor.output(index)));
            QCOMPARE(compositor.output(index).shown.empty(), kind != Kind::hyprland);
        }
        tint(services, 0.25F);
        QTRY_VERIFY(shows(compositor, 0, 0.25F));
        QVERIFY(console.lines.empty());
    }

    void whatARealClientDoesIsServed()
    {
        const auto client = QStandardPaths::findExecutable(QStringLiteral("wlsunset"));
        if (client.isEmpty())
            QSKIP("wlsunset is not installed");
        for (const auto kind : {Kind::sway, Kind::niri, Kind::hyprland}) {
            const CapturedConsole console;
            GammaCompositor compositor(kind, m_socket);
            compositor.addOutput(256);
            QProcess process;
            auto environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("WAYLAND_DISPLAY"), QString::fromStdString(m_socket));
            process.setProcessEnvironment(environment);
            process.start(client, QStringLiteral("-t 3000 -T 3001 -S 00:00 -s 00:01").split(QLatin1Char(' ')));
            QTRY_COMPARE(compositor.output(0).shown.size(), 768U);
            QVERIFY(compositor.output(0).shown.back() < 60'000);
            // While another program has the control, that is said once; nothing of what it shows is touched.
            const auto shown = compositor.output(0).shown;
            if (kind != Kind::hyprland) {
                auto services = servicesOf(m_socket);
                QTRY_COMPARE(services.activeDisplays().size(), 1U);
                for (int i = 0; i < 5; ++i)
                    tint(services, 0.5F);
                QTRY_COMPARE(console.lines.size(), 1U);
                QTRY_VERIFY(services.refusal());
                QCOMPARE(compositor.output(0).shown, shown);
            }
            process.kill();
            process.waitForFinished();
        }
    }

    void aMatrixStandsInWhereHyprlandRefusesTheTables()
    {
        const CapturedConsole console;
        GammaCompositor compositor(Kind::hyprland, m_socket);
        compositor.addOutput(256, true);
        auto services = servicesOf(m_socket);
        QTRY_COMPARE(services.activeDisplays().size(), 1U);
        tint(services, 0.25F);
        QTRY_COMPARE(compositor.output(0).matrix, (std::array{1.0, 1.0, 0.25}));
        QCOMPARE(console.lines.size(), 1U);
        services.restoreSystemColours();
        QCOMPARE(compositor.output(0).matrix, (std::array{1.0, 1.0, 1.0}));
    }

    void brokenCompositorsAreLeftOutAndLostOnesComeBack()
    {
        const CapturedConsole console;
        qputenv("WAYLAND_SOCKET", "0"); // which is the toolkit's
        std::optional<GammaCompositor> compositor;
        compositor.emplace(Kind::sway, m_socket);
        for (const auto size : {0U, 1U, 65'536U, 0xFFFF'FFFFU})
            compositor->addOutput(size);
        auto services = servicesOf(m_socket);
        QTRY_COMPARE(services.activeDisplays().size(), 4U); // nobody has asked yet
        tint(services, 0.5F);
        QTRY_COMPARE(services.activeDisplays().size(), 0U);
        const auto right = compositor->addOutput(256);
        QTRY_VERIFY(shows(*compositor, right, 0.5F));
        compositor->accuseEverybody();
        QTRY_COMPARE(compositor->output(right).writes, 2);
        QCOMPARE(console.lines.size(), 2U); // lost, and there again
        compositor.reset();
        QTRY_COMPARE(console.lines.size(), 3U);
        compositor.emplace(Kind::niri, m_socket);
        compositor->addOutput(256);
        QTRY_VERIFY(shows(*compositor, 0, 0.5F));
        QCOMPARE(console.lines.size(), 4U);
        QCOMPARE(qgetenv("WAYLAND_SOCKET"), "0");
        qunsetenv("WAYLAND_SOCKET");
    }

    void aCompositorThatDoesNotAnswerHoldsNobodyUpAndShowsTheNewestTintLater()
    {
        GammaCompositor compositor(Kind::sway, m_socket);
        compositor.addOutput(256);
        auto services = servicesOf(m_socket);
        QTRY_COMPARE(services.activeDisplays().size(), 1U);
        tint(services, 0);
        QTRY_VERIFY(shows(compositor, 0, 0));
        {
            const auto frozen = compositor.freeze();
            // Many more than a socket takes: this ends, or the test's time does.
            for (int step = 1; step < 2000; ++step)
                tint(services, static_cast<float>(step % 100) / 100);
        }
        tint(services, 0.625F);
        QTRY_VERIFY(shows(compositor, 0, 0.625F));
    }

    void displaysAreGivenBackByTheGuardianWhereTheCompositorDoesNot()
    {
        for (const auto kind : {Kind::sway, Kind::hyprland}) {
            GammaCompositor compositor(kind, m_socket);
            for (const auto size : {256U, 1024U})
                compositor.addOutput(size);
            QProcess copy;
            copy.start(QCoreApplication::applicationFilePath(),
                       {QStringLiteral("tint"), QString::fromStdString(m_socket)});
            QTRY_VERIFY(shows(compositor, 0, 0.5F) && shows(compositor, 1, 0.5F));
            QCOMPARE(childOf(static_cast<pid_t>(copy.processId()), "AmbertideGuardian") != 0, kind == Kind::hyprland);
            copy.kill();
            copy.waitForFinished();
            QTRY_VERIFY(showsIdentity(compositor.output(0)) && showsIdentity(compositor.output(1)));
        }
    }

    void itSaysWhyACompositorCannotBeTinted()
    {
        const GammaCompositor compositor(Kind::withoutGammaControl, m_socket);
        QCOMPARE(WlrootsBackend::refusal(m_socket), "the compositor offers no gamma control");
        QCOMPARE(WlrootsBackend::refusal("/nonexistent"), "the compositor /nonexistent cannot be reached");
    }
};

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], "tint") == 0)
        return runCopy(argv[2]);
    const QCoreApplication application(argc, argv);
    WlrootsBackendTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "WlrootsBackend.moc"
