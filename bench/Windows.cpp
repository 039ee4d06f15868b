#include "Windows.h"

#include "ProcessCost.h"
#include "Session.h"
#include "adapters/linux/x11/XcbReply.h"
#include "support/FakeWatcher.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <optional>
#include <thread>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr int pointerX = 640;
constexpr int pointerY = 10;

/// Looks at the screen where the panel opens: below the pointer, left of its title.
class Screen
{
public:
    explicit Screen(const std::string &display) : m_connection(xcb_connect(display.c_str(), nullptr))
    {
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        xcb_warp_pointer(m_connection, XCB_NONE, m_root, 0, 0, 0, 0, pointerX, pointerY);
        xcb_flush(m_connection);
    }
    ~Screen() { xcb_disconnect(m_connection); }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    bool isPanelPainted() const
    {
        const auto image = owned(xcb_get_image_reply(
            m_connection, xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, 500, 45, 1, 1, ~0U), nullptr));
        return image && *xcb_get_image_data(image.get()) != 0;
    }

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_root;
};

class Icon
{
public:
    explicit Icon(pid_t process) : m_name("org.kde.StatusNotifierItem-" + std::to_string(process) + "-1") {}

    void click()
    {
        m_caller.callOther(m_name.c_str(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate", "ii", 0, 0);
    }
    void act(const char *action)
    {
        m_caller.call(bus_names::applicationPath, "org.freedesktop.Application", "ActivateAction", "sava{sv}", action,
                      0, 0);
    }
    /// How long the main thread takes to answer.
    double answerTime()
    {
        return millisecondsFor(
            [this] { m_caller.call(bus_names::applicationPath, "org.freedesktop.DBus.Peer", "Ping", ""); });
    }

private:
    const std::string m_name;
    Caller m_caller;
};

void xdotool(const QStringList &arguments) { QProcess::execute(QStringLiteral("xdotool"), arguments); }

void closeFrontWindow(const char *key)
{
    xdotool({QStringLiteral("key"), QString::fromLatin1(key)});
    std::this_thread::sleep_for(400ms); // a click that comes too soon counts as the one that has closed the panel
}

/// What is measured during a drag of 2 s over the whole slider and back, at 125 moves a second, until the button is
/// released: the longest time for which the main thread did not answer, and whether the tables have stayed the same.
struct Drag
{
    double longestWait = 0;
    bool isQuiet = true;
};
Drag drag(Session &session, Icon &icon)
{
    constexpr int left = pointerX - 150 + 16;
    constexpr int width = 268 - 20;
    const QString y = QStringLiteral("124");
    QStringList script = {QStringLiteral("mousemove"), QString::number(left + width + 10), y,
                          QStringLiteral("mousedown"), QStringLiteral("1")};
    for (int move = 0; move < 250; ++move) {
        const int position = std::abs(125 - move) * width / 125;
        script += {QStringLiteral("mousemove"), QString::number(left + position), y, QStringLiteral("sleep"),
                   QStringLiteral("0.008")};
    }
    const auto before = session.shown();
    QProcess pointer;
    pointer.start(QStringLiteral("xdotool"), script);
    Drag result;
    while (!pointer.waitForFinished(1)) {
        result.longestWait = std::max(result.longestWait, icon.answerTime());
        result.isQuiet = result.isQuiet && session.shown() == before;
    }
    xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
    return result;
}

} // namespace

void measureWindows()
{
    Session session;
    FakeWatcher watcher;
    const Screen screen(session.display());
    const auto waitForIcon = [&] { waitFor("no icon", [&] { return !watcher.registered.empty(); }); };

    print("start to the icon's registration",
          medianOf(9,
                   [&] {
                       watcher.registered.clear();
                       const auto start = Clock::now();
                       session.start();
                       waitForIcon();
                       const double time = Milliseconds(Clock::now() - start).count();
                       session.stop();
                       return time;
                   }),
          250, "ms");

    std::optional<Icon> icon;
    const auto clickToPanel = [&] {
        const auto start = Clock::now();
        icon->click();
        waitFor("no panel", [&] { return screen.isPanelPainted(); });
        const double time = Milliseconds(Clock::now() - start).count();
        closeFrontWindow("Escape");
        return time;
    };
    print("click to the painted panel, the first time",
          medianOf(5,
                   [&] {
                       session.stop();
                       watcher.registered.clear();
                       session.start();
                       waitForIcon();
                       std::this_thread::sleep_for(1s);
                       icon.emplace(session.process());
                       return clickToPanel();
                   }),
          100, "ms");
    print("click to the painted panel, later", medianOf(11, clickToPanel), 50, "ms");

    for (int round = 0; round < 3; ++round) {
        icon->act("settings");
        std::this_thread::sleep_for(700ms);
        closeFrontWindow("ctrl+w");
    }
    print("memory, panel and Settings window used and closed: proportional set size",
          static_cast<double>(memoryOf(session.process(), "Pss:")) / 1024, 32, "MB");

    icon->click();
    waitFor("no panel", [&] { return screen.isPanelPainted(); });
    const auto [longestWait, isQuiet] = drag(session, *icon);
    print("a drag of 2 s: longest time without an answer of the main thread", longestWait, 25, "ms");
    print("a drag of 2 s: ramps begun before its end", isQuiet ? 0 : 1, 0, "");
}

} // namespace ambertide
