#include "adapters/linux/tray/DesktopTrayIcon.h"

#include "support/CapturedConsole.h"
#include "support/FakeWatcher.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;
using Presence = TrayIcon::Presence;

namespace {

/// An X11 tray, there or not.
struct FakeTray
{
    Presence presence = Presence::Nowhere;
    std::function<void()> presenceChanged;
    std::string menuAndToolTip;
    int icons = 0; ///< now
    int made = 0;
};

struct FakeFallback final : TrayIcon
{
    FakeTray &tray;

    FakeFallback(FakeTray &screenTray, Callbacks callbacks) : tray(screenTray)
    {
        ++tray.icons;
        ++tray.made;
        tray.presenceChanged = std::move(callbacks.presenceChanged);
    }
    ~FakeFallback() override { --tray.icons; }

    Presence presence() const override { return tray.presence; }
    void setMenu(std::vector<TrayMenuItem> items) override
    {
        tray.menuAndToolTip = items.empty() ? "" : items.front().text;
    }
    void setToolTip(std::string text) override { tray.menuAndToolTip += ' ' + text; }
};

/// What waits for a watcher no longer than for the next turn of the event loop.
struct Icon
{
    FakeTray tray;
    CapturedConsole console;
    DBusSession session{SdBusKind::session};
    std::vector<Presence> presences;
    DesktopTrayIcon icon;

    explicit Icon(Presence fallback = Presence::Nowhere, std::chrono::milliseconds patience = 0ms)
        : tray{fallback, {}, {}},
          icon(
              session, "/", {[](auto) {}, [this] { presences.push_back(icon.presence()); }},
              [this](const auto &, auto callbacks) { return makeFallback(callbacks); }, patience)
    {
    }

    std::unique_ptr<TrayIcon> makeFallback(const TrayIcon::Callbacks &callbacks)
    {
        return std::make_unique<FakeFallback>(tray, callbacks);
    }
};

} // namespace

class DesktopTrayIconTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWatcherIsTakenAndTheXServerLeftAlone()
    {
        const PrivateBus bus;
        FakeWatcher watcher;
        Icon icon(Presence::Shown);
        QTRY_COMPARE(icon.icon.presence(), Presence::Shown);
        QCOMPARE(icon.tray.made, 0);
        QCOMPARE(icon.presences, std::vector{Presence::Shown});
    }

    void aWatcherThatDoesNotTakeTheIconIsWaitedFor()
    {
        const PrivateBus bus;
        FakeWatcher watcher(FakeWatcher::Answer::Refuses);
        Icon icon(Presence::Shown);
        QTRY_COMPARE(watcher.registered.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(icon.icon.presence(), Presence::Pending);
        QCOMPARE(icon.tray.made, 0);
    }

    void withoutAWatcherAnX11TrayIsTakenUntilOneComes()
    {
        const PrivateBus bus;
        Icon icon(Presence::Shown);
        icon.icon.setMenu({{"Quit", true, {}}});
        icon.icon.setToolTip("3400 K");
        QCOMPARE(icon.icon.presence(), Presence::Pending);
        QTRY_COMPARE(icon.icon.presence(), Presence::Shown);
        QCOMPARE(icon.tray.menuAndToolTip, std::string("Quit 3400 K"));

        auto watcher = std::make_unique<FakeWatcher>();
        QTRY_COMPARE(icon.tray.icons, 0);
        QCOMPARE(icon.icon.presence(), Presence::Shown);
        // A panel that starts anew is waited for like at the start.
        watcher.reset();
        QTRY_COMPARE(icon.tray.made, 2);
        QCOMPARE(icon.presences, (std::vector{Presence::Shown, Presence::Pending, Presence::Shown}));
        QCOMPARE(icon.console.lines.size(), 0U);
    }

    void aWatcherMayComeLateWithinItsTime()
    {
        const PrivateBus bus;
        Icon icon(Presence::Shown, 1h);
        const FakeWatcher watcher;
        QTRY_COMPARE(icon.icon.presence(), Presence::Shown);
        QCOMPARE(icon.tray.made, 0);
    }

    void aDesktopWithoutTraysIsToldOfOnceAndOneThatComesUpIsTaken()
    {
        const PrivateBus bus;
        Icon icon;
        QTRY_COMPARE(icon.icon.presence(), Presence::Nowhere);
        for (const auto presence : {Presence::Shown, Presence::Nowhere}) {
            icon.tray.presence = presence;
            icon.tray.presenceChanged();
            QCOMPARE(icon.icon.presence(), presence);
        }
        const FakeWatcher watcher;
        QTRY_COMPARE(icon.icon.presence(), Presence::Shown);
        QCOMPARE(icon.console.lines.size(), 1U);
        QVERIFY(icon.console.lines.front().find("start Ambertide again") != std::string::npos);
    }

    void withoutABusNothingIsWaitedFor()
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        const Icon icon(Presence::Shown, 1h);
        QCOMPARE(icon.icon.presence(), Presence::Shown);
        QCOMPARE(icon.presences.size(), 0U);
    }
};

QTEST_GUILESS_MAIN(DesktopTrayIconTest)
#include "DesktopTrayIcon.moc"
