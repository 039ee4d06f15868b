"""Memory after long use: windows opened and closed again and again, and a flood of posts from another program."""

import pathlib
import re

import screen_reader
from desktop import AT_3400, main, wait_until
from gi.repository import Gio, GLib

WARM_UP = 100
MOST_GROWTH = 1024  # KiB
POSTS = [{}, {"temperature": GLib.Variant("s", "9" * 10_000)}, {"temperature": GLib.Variant("x", -2**63)},
         {"temperature": GLib.Variant("x", 2500)}, {"temperature": GLib.Variant("d", 5000)}]


def memory(desktop):
    """Of its own, in KiB; 0 where the sanitizer keeps what is freed."""
    process = pathlib.Path(f"/proc/{desktop.application.pid}")
    if "libasan" in (process / "maps").read_text():
        return 0
    return int(re.search(r"^Anonymous:\s+(\d+) kB$", (process / "smaps_rollup").read_text(), re.MULTILINE)[1])


def expect_windows(count):
    wait_until(lambda: screen_reader.application().get_child_count() == count, f"there are not {count} windows")


def use(desktop, rounds):
    desktop.start_application()
    for show, close in (lambda: desktop.call("Activate", "a{sv}", "0"), "Escape"), (desktop.show_settings, "ctrl+w"):
        for round in range(rounds):
            if round == WARM_UP:
                before = memory(desktop)
            show()
            expect_windows(1)
            wait_until(screen_reader.focused, "the window gets no keyboard")
            desktop.key(close)
            expect_windows(0)
        print(f"{before} KiB after the first {WARM_UP}, {memory(desktop)} at the end", flush=True)
        assert memory(desktop) - before < MOST_GROWTH
    desktop.call("ActivateAction", "sava{sv}", "quit", "0", "0")
    assert desktop.application.wait(60) == 0, desktop.log()  # else there are leaks


def hostile_posts(desktop):
    desktop.start_application()
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def flood(rounds, last):
        for content in [*POSTS * rounds, {"temperature": GLib.Variant("x", last)}]:
            bus.emit_signal(None, "/me/tovanu/Ambertide", "me.tovanu.Ambertide.DistributedNotificationCenter", "Posted",
                            GLib.Variant("(sa{sv})", ("Ambertide.UpdateTemperature", content)))
        bus.flush_sync()
        wait_until(lambda: desktop.tool("get") == str(last), "the last post is not heeded", 60)

    flood(200, 2700)
    before = memory(desktop)
    flood(1800, 3400)
    assert memory(desktop) - before < MOST_GROWTH / 4
    wait_until(lambda: desktop.white_point() == AT_3400, "the display does not follow")


main({"short": lambda desktop: use(desktop, 150), "long": lambda desktop: use(desktop, 1000),
      "hostile-posts": hostile_posts})
