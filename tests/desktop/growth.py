"""Memory after long use: windows opened and closed again and again."""

import pathlib
import re

import screen_reader
from desktop import main, wait_until

WARM_UP = 100
MOST_GROWTH = 1024  # KiB


def memory(desktop):
    """Of its own, in KiB."""
    text = pathlib.Path(f"/proc/{desktop.application.pid}/smaps_rollup").read_text()
    return int(re.search(r"^Anonymous:\s+(\d+) kB$", text, re.MULTILINE)[1])


def expect_windows(count):
    wait_until(lambda: screen_reader.application().get_child_count() == count, f"there are not {count} windows")


def use(desktop, rounds):
    desktop.start_application()
    desktop.wait_for_icon()
    keeps_what_is_freed = "libasan" in pathlib.Path(f"/proc/{desktop.application.pid}/maps").read_text()
    for show, close in (desktop.activate, "Escape"), (desktop.show_settings, "ctrl+w"):
        for round in range(rounds):
            if round == WARM_UP:
                before = memory(desktop)
            show()
            expect_windows(1)
            wait_until(screen_reader.focused, "the window gets no keyboard")
            desktop.key(close)
            expect_windows(0)
        print(f"{before} KiB after the first {WARM_UP}, {memory(desktop)} at the end", flush=True)
        assert keeps_what_is_freed or memory(desktop) - before < MOST_GROWTH
    desktop.call("ActivateAction", "sava{sv}", "quit", "0", "0")
    assert desktop.application.wait(60) == 0, desktop.log()  # else there are leaks


main({"short": lambda desktop: use(desktop, 150), "long": lambda desktop: use(desktop, 1000)})
