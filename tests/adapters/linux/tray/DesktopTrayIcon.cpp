#include "adapters/linux/tray/DesktopTrayIcon.h"

#include "support/CapturedConsole.h"
#include "support/FakeWatcher.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;
using Presence = TrayIcon::Presence;

namespace {

/// A desktop with an X11 tray, or none, and a bus on which a watcher may come up.
struct Desktop
{
    PrivateBus bus;
    CapturedConsole console;
    DBusSession session{SdBusKind::session};
    Presence trayPresence;
    std::function<void()> trayPresenceChanged;
    std::string trayMenuAndToolTip;
    int trayIcons = 0;
    std::vector<Presence> presences;
    DesktopTrayIcon icon;

    /// By default a watcher is waited for until the next turn of the event loop.
    explicit Desktop(Presence ofTray, std::chrono::milliseconds patience = 0ms);
};

struct FakeXembedIcon final : TrayIcon
{
    Desktop &desktop;

    explicit FakeXembedIcon(Desktop &itsDesktop) : desktop(itsDesktop) { ++desktop.trayIcons; }
    ~FakeXembedIcon() override { --desktop.trayIcons; }
    Presence presence() const override { return desktop.trayPresence; }
    void setMenu(std::vector<TrayMenuItem> items) override
    {
        desktop.trayMenuAndToolTip = items.empty() ? "" : items.front().text;
    }
    void setToolTip(std::string text) override { desktop.trayMenuAndToolTip += ' ' + text; }
};

Desktop::Desktop(Presence ofTray, std::chrono::milliseconds patience)
    : trayPresence(ofTray), icon(
                                session, "/", {[](auto) {}, [this] { presences.push_back(icon.presence()); }},
                                [this](const auto &, auto callbacks) {
                                    trayPresenceChanged = callbacks.presenceChanged;
                                    return std::make_unique<FakeXembedIcon>(*this);
                                },
                                patience)
{
}

} // namespace

class DesktopTrayIconTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWatcherIsWaitedForAndTheXServerLeftAlone()
    {
        Desktop desktop(Presence::Shown, 1h);
        auto refusing = std::make_unique<FakeWatcher>(FakeWatcher::Answer::Refuses);
        QTRY_COMPARE(refusing->registered.size(), 1);
        refusing.reset();
        QCOMPARE(desktop.icon.presence(), Presence::Pending);
        const FakeWatcher watcher;
        QTRY_COMPARE(desktop.icon.presence(), Presence::Shown);
        QCOMPARE(desktop.presences, std::vector{Presence::Shown});
        QCOMPARE(desktop.trayIcons, 0);
    }

    void withoutAWatcherAnX11TrayIsTakenUntilOneComes()
    {
        Desktop desktop(Presence::Shown);
        desktop.icon.setMenu({{"Quit", true, {}}});
        desktop.icon.setToolTip("3400 K");
        QTRY_COMPARE(desktop.icon.presence(), Presence::Shown);
        QCOMPARE(desktop.trayMenuAndToolTip, std::string("Quit 3400 K"));
        auto watcher = std::make_unique<FakeWatcher>();
        QTRY_COMPARE(desktop.trayIcons, 0);
        // A panel that restarts is waited for as at the start.
        watcher.reset();
        QTRY_COMPARE(desktop.trayIcons, 1);
        QCOMPARE(desktop.presences, (std::vector{Presence::Shown, Presence::Pending, Presence::Shown}));
        QCOMPARE(desktop.console.lines.size(), 0U);
    }

    void aDesktopWithoutTraysIsToldOfOnceAndOneThatComesUpIsTaken()
    {
        Desktop desktop(Presence::Nowhere);
        QTRY_COMPARE(desktop.icon.presence(), Presence::Nowhere);
        for (const auto presence : {Presence::Shown, Presence::Nowhere}) {
            desktop.trayPresence = presence;
            desktop.trayPresenceChanged();
            QCOMPARE(desktop.icon.presence(), presence);
        }
        QCOMPARE(desktop.console.lines.size(), 1U);
        QVERIFY(desktop.console.lines.front().find("start Ambertide again") != std::string::npos);
    }
};

QTEST_GUILESS_MAIN(DesktopTrayIconTest)
#include "DesktopTrayIcon.moc"
