#include "platform/linux/SessionDisplayServices.h"

#include "platform/Console.h"
#include "support/PrivateXServer.h"

#include <QTest>

using namespace ambertide;

class SessionDisplayServicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSessionDecides_data()
    {
        QTest::addColumn<QByteArray>("wayland");
        QTest::addColumn<bool>("hasX");
        QTest::addColumn<int>("displays");
        QTest::addColumn<int>("lines");
        QTest::newRow("X11") << QByteArray() << true << 1 << 0;
        QTest::newRow("an empty name is no Wayland session") << QByteArray("") << true << 1 << 0;
        QTest::newRow("Wayland goes before X11") << QByteArray("wayland-0") << true << 0 << 1;
        QTest::newRow("neither") << QByteArray() << false << 0 << 1;
    }
    void theSessionDecides()
    {
        QFETCH(const QByteArray, wayland);
        QFETCH(const bool, hasX);
        QFETCH(const int, displays);
        QFETCH(const int, lines);
        const PrivateXServer server(PrivateXServer::Kind::framebuffer);
        wayland.isNull() ? qunsetenv("WAYLAND_DISPLAY") : qputenv("WAYLAND_DISPLAY", wayland);
        hasX ? qputenv("DISPLAY", QByteArray::fromStdString(server.display())) : qunsetenv("DISPLAY");
        int said = 0;
        console::redirect([&said](std::string_view) { ++said; });

        const auto services = makeSessionDisplayServices(AMBERTIDE_BUNDLE "/Contents/MacOS");
        QCOMPARE(services->activeDisplays().size(), std::size_t(displays));

        console::redirect({});
        QCOMPARE(said, lines);
    }
};

QTEST_GUILESS_MAIN(SessionDisplayServicesTest)
#include "SessionDisplayServices.moc"
