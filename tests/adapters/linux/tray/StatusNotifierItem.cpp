#include "adapters/linux/tray/StatusNotifierItem.h"

#include "support/FakeWatcher.h"
#include "support/PrivateBus.h"
#include "support/busctl.h"

#include <unistd.h>

using namespace ambertide;
using Presence = TrayIcon::Presence;

namespace {

constexpr char itemInterface[] = "/StatusNotifierItem org.kde.StatusNotifierItem ";
constexpr char menuInterface[] = "/MenuBar com.canonical.dbusmenu ";

QString itemName() { return QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(getpid()); }

/// An item that a panel shows, and what comes of it.
struct ShownItem
{
    PrivateBus bus;
    FakeWatcher watcher;
    QStringList events;
    DBusSession session{SdBusKind::session};
    StatusNotifierItem item;

    explicit ShownItem(StatusNotifierItem::Click click = StatusNotifierItem::Click::Activates)
        : item(session, TrayArtwork(AMBERTIDE_BUNDLE "/Contents/Resources/icons"), "Ambertide", click,
               {[this](auto place) {
                    events += place ? QStringLiteral("activated at %1,%2").arg(place->x()).arg(place->y())
                                    : QStringLiteral("activated");
                },
                [] {}})
    {
        item.setMenu({entry("Set_tings"), entry("Updates", false), {}, entry("Quit")});
        [this] { QTRY_COMPARE(item.presence(), Presence::Shown); }();
    }

    TrayMenuItem entry(const char *text, bool isEnabled = true)
    {
        return {text, isEnabled, [this, text] { events += QString::fromLatin1(text); }};
    }

    QString call(const char *interface, const QString &call)
    {
        return busctl(QStringLiteral("-- call %1 %2 %3").arg(itemName(), QLatin1String(interface), call));
    }
};

} // namespace

class StatusNotifierItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsAreAnsweredAndPerformed()
    {
        ShownItem shown;
        const auto row = [&shown](const char *interface, const char *call, const char *reply, const char *events = "") {
            shown.events.clear();
            const auto said = shown.call(interface, QLatin1String(call));
            QVERIFY2(*reply == '\0' ? said.isEmpty() : said.startsWith(QLatin1String(reply)), qPrintable(said));
            QCOMPARE(shown.events.join(u' '), QLatin1String(events));
        };
        const char *const missing = "Call failed: There is no such item";
        row(itemInterface, "Activate ii 1 2", "", "activated at 1,2");
        row(itemInterface, "Activate ii 0 0", "", "activated");
        row(itemInterface, "SecondaryActivate ii -1 2147483647", "", "activated at -1,2147483647");
        row(itemInterface, "ContextMenu ii 3 4", "", "activated at 3,4");
        row(itemInterface, "Scroll is 120 vertical", "");
        row(menuInterface, "GetLayout iias 0 -1 0",
            R"(u(ia{sv}av) 2 0 1 "children-display" s "submenu" 4 )"
            R"((ia{sv}av) 1 2 "enabled" b true "label" s "Set__tings" 0 )"
            R"((ia{sv}av) 2 2 "enabled" b false "label" s "Updates" 0 (ia{sv}av) 3 1 "type" s "separator" 0 )"
            R"((ia{sv}av) 4 2 "enabled" b true "label" s "Quit" 0)");
        row(menuInterface, "GetLayout iias 0 0 0", R"(u(ia{sv}av) 2 0 1 "children-display" s "submenu" 0)");
        row(menuInterface, "GetLayout iias 4 -1 1 label", R"(u(ia{sv}av) 2 4 2 "enabled" b true "label" s "Quit" 0)");
        row(menuInterface, "GetLayout iias -2147483648 -1 0", missing);
        row(menuInterface, "GetGroupProperties aias 3 3 99 -1 0", R"(a(ia{sv}) 1 3 1 "type" s "separator")");
        row(menuInterface, "GetProperty is 2 enabled", "v b false");
        row(menuInterface, "GetProperty is 2 colour", "Call failed: There is no such property");
        row(menuInterface, "AboutToShow i 0", "b false");
        row(menuInterface, "AboutToShowGroup ai 3 0 4 9", "aiai 0 1 9");
        row(menuInterface, "Event isvu 1 clicked i 0 0", "", "Set_tings");
        row(menuInterface, "Event isvu 1 hovered s any 0", "");
        row(menuInterface, "Event isvu 2 clicked i 0 0", "");
        row(menuInterface, "Event isvu 9 clicked i 0 0", missing);
        row(menuInterface, "EventGroup a(isvu) 3 7 clicked i 0 0 4 clicked i 0 0 1 opened i 0 0", "ai 1 7", "Quit");
        // Huge calls are cut short.
        const auto properties =
            QStringLiteral("GetGroupProperties aias 9000%1 0").arg(QStringLiteral(" 4").repeated(9000));
        QCOMPARE(shown.call(menuInterface, properties),
                 QStringLiteral(R"(a(ia{sv}) 1 4 2 "enabled" b true "label" s "Quit")"));
        const auto events =
            QStringLiteral("EventGroup a(isvu) 9000") + QStringLiteral(" 4 clicked s x 0").repeated(9000);
        shown.events.clear();
        shown.call(menuInterface, events);
        QCOMPARE(shown.events.size(), 256);
    }

    void whatAHostStillShowsOfAReplacedMenuDoesNothing()
    {
        ShownItem shown;
        const auto click = [&](int identifier) {
            return shown.call(menuInterface, QStringLiteral("Event isvu %1 clicked i 0 0").arg(identifier));
        };
        QStringList told;
        const auto signals = shown.session.match("type='signal',path='/MenuBar'", [&told](sd_bus_message *signal) {
            told += QLatin1String(sd_bus_message_get_member(signal));
        });
        // The same texts: the open menu goes on to work, and shows the new states.
        shown.item.setMenu({shown.entry("Set_tings", false), shown.entry("Updates"), {}, shown.entry("Quit")});
        click(1);
        click(2);
        QCOMPARE(shown.events, QStringList(QStringLiteral("Updates")));
        QTRY_COMPARE(told, QStringList(QStringLiteral("ItemsPropertiesUpdated")));
        shown.item.setMenu({shown.entry("Quit")});
        click(1);
        QCOMPARE(shown.events.size(), 1);
        click(5);
        QCOMPARE(shown.events.last(), QStringLiteral("Quit"));
        QTRY_COMPARE(told.last(), QStringLiteral("LayoutUpdated"));
    }

    void whereAClickOpensTheMenuItsFirstEntryActivates()
    {
        ShownItem shown(StatusNotifierItem::Click::OpensMenu);
        const auto layout = shown.call(menuInterface, QStringLiteral("GetLayout iias 0 1 0"));
        QVERIFY2(layout.contains(QStringLiteral(R"( 6 (ia{sv}av) 3 2 "enabled" b true "label" s "Open Ambertide" )")),
                 qPrintable(layout));
        shown.call(menuInterface, QStringLiteral("Event isvu 3 clicked i 0 0"));
        QCOMPARE(shown.events, QStringList(QStringLiteral("activated")));
    }
};

QTEST_MAIN(StatusNotifierItemTest)
#include "StatusNotifierItem.moc"
