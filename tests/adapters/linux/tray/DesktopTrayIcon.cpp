#include "adapters/linux/tray/DesktopTrayIcon.h"

#include "support/CapturedConsole.h"
#include "support/FakeWatcher.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace ambertide;
using namespace std::chrono_literals;
using Presence = TrayIcon::Presence;

namespace {

struct FakeXembedIcon final : TrayIcon
{
    static inline Presence place = Presence::Shown;

    QString &record;

    explicit FakeXembedIcon(QString &events) : record(events) { record += QStringLiteral("comes "); }
    ~FakeXembedIcon() override { record += QStringLiteral("goes "); }
    Presence presence() const override { return place; }
    void setMenu(std::vector<TrayMenuItem> items) override
    {
        record += QString::number(items.size()) + QStringLiteral(" entry ");
    }
    void setToolTip(std::string text) override { record += QString::fromStdString(text) + u' '; }
};

/// A desktop with an X11 tray and a bus on which a watcher may come up.
struct Desktop
{
    PrivateBus bus;
    CapturedConsole console;
    DBusSession session{SdBusKind::session};
    QString tray; ///< what becomes of the icon in the X11 tray
    std::vector<Presence> presences;
    DesktopTrayIcon::Patience patience;
    DesktopTrayIcon icon{session,
                         "/",
                         {[](auto) {}, [this] { presences.push_back(icon.presence()); }},
                         [this](const auto &, auto) { return std::make_unique<FakeXembedIcon>(tray); },
                         patience};

    /// By default a watcher is waited for until the next turn of the event loop.
    explicit Desktop(std::chrono::milliseconds beforeFallback = 0ms) : patience{beforeFallback, beforeFallback + 1ms} {}
};

} // namespace

class DesktopTrayIconTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWatcherIsWaitedForAndTheXServerLeftAlone()
    {
        Desktop desktop(1h);
        auto refusing = std::make_unique<FakeWatcher>(FakeWatcher::Answer::Refuses);
        QTRY_COMPARE(refusing->registered.size(), 1);
        refusing.reset();
        QCOMPARE(desktop.icon.presence(), Presence::Pending);
        const FakeWatcher watcher;
        QTRY_COMPARE(desktop.icon.presence(), Presence::Shown);
        QCOMPARE(desktop.presences, std::vector{Presence::Shown});
        QCOMPARE(desktop.tray, QString());
    }

    void withoutAWatcherAnX11TrayIsTakenUntilOneComes()
    {
        Desktop desktop;
        std::optional<FakeWatcher> watcher(std::in_place, FakeWatcher::Answer::Refuses); // which is as good as none
        desktop.icon.setMenu({{"Quit", true, {}}});
        desktop.icon.setToolTip("3400 K");
        QTRY_COMPARE(desktop.icon.presence(), Presence::Shown);
        QCOMPARE(watcher->registered.size(), 1);
        watcher.emplace();
        QTRY_COMPARE(desktop.tray, QStringLiteral("comes 1 entry 3400 K goes "));
        // A panel that restarts is waited for as at the start.
        watcher.reset();
        QTRY_COMPARE(desktop.tray.count(QStringLiteral("comes")), 2);
        QCOMPARE(desktop.presences, (std::vector{Presence::Shown, Presence::Pending, Presence::Shown}));
        QCOMPARE(desktop.console.lines.size(), 0U);
        watcher.emplace();
        QTRY_COMPARE(desktop.tray.count(QStringLiteral("goes")), 2);
        FakeXembedIcon::place = Presence::Nowhere;
        desktop.presences.clear();
        watcher.reset();
        QTRY_COMPARE(desktop.presences, (std::vector{Presence::Pending, Presence::Nowhere}));
        QCOMPARE(desktop.console.lines.size(), 1U);
        watcher.emplace(FakeWatcher::Answer::Refuses);
        QTRY_COMPARE(desktop.presences.size(), 4U);
        watcher.emplace();
        QTRY_COMPARE(desktop.icon.presence(), Presence::Shown);
        desktop.presences.pop_back();
        desktop.presences.erase(desktop.presences.begin(), desktop.presences.begin() + 2);
        QCOMPARE(desktop.presences, (std::vector{Presence::Pending, Presence::Nowhere, Presence::Pending}));
    }
};

QTEST_GUILESS_MAIN(DesktopTrayIconTest)
#include "DesktopTrayIcon.moc"
