"""Memory after long use: windows opened and closed, the slider moved."""

import pathlib
import re

import screen_reader
from desktop import main, wait_until

WARM_UP = 100
MOST_GROWTH = 1024  # KiB


def memory(desktop):
    """Proportional set size and memory of its own, in KiB. The first also depends on who else uses the same libraries."""
    with open(f"/proc/{desktop.application.pid}/smaps_rollup") as file:
        figures = dict(re.findall(r"^(\w+):\s+(\d+) kB$", file.read(), re.MULTILINE))
    return int(figures["Pss"]), int(figures["Anonymous"])


def window_count():
    return screen_reader.application().get_child_count()


def open_and_close(desktop, show, close):
    show()
    wait_until(lambda: window_count() == 1, "no window opens")
    wait_until(screen_reader.focused, "the window gets no keyboard")
    desktop.key(close)
    wait_until(lambda: window_count() == 0, "the window stays")


def move_slider(desktop, count):
    desktop.activate()
    x, y, width, _ = screen_reader.extents("slider", "Color temperature")
    # In pieces, since nobody moves faster than the events are taken.
    for _ in range(count // WARM_UP):
        desktop.drag((x + width - 10, y + 10), *((x + step * 53 % width, y + 10) for step in range(1, WARM_UP)),
                     (x + width, y + 10))
    desktop.drag((x + width - 10, y + 10), (x, y + 10))
    wait_until(lambda: screen_reader.value("slider", "Color temperature") == 1000, "the slider was not held")
    desktop.tool("set", "6500")
    wait_until(lambda: screen_reader.value("slider", "Color temperature") == 6500, "the slider does not follow")
    desktop.key("Escape")
    wait_until(lambda: window_count() == 0, "the panel stays")


def use(desktop, rounds, moves):
    figures = {}
    desktop.start_application()
    desktop.wait_for_icon()
    for name, show, close in (("panel", desktop.activate, "Escape"), ("Settings", desktop.show_settings, "ctrl+w")):
        for _ in range(WARM_UP):
            open_and_close(desktop, show, close)
        before = memory(desktop)
        for _ in range(rounds - WARM_UP):
            open_and_close(desktop, show, close)
        figures[name] = before, memory(desktop)
    move_slider(desktop, WARM_UP)
    before = memory(desktop)
    move_slider(desktop, moves)
    figures["slider"] = before, memory(desktop)
    for name, (first, last) in figures.items():
        print(f"{name}: KiB proportional and own: {first} after the first {WARM_UP}, {last} at the end", flush=True)
    keeps_what_is_freed = "libasan" in pathlib.Path(f"/proc/{desktop.application.pid}/maps").read_text()
    desktop.call("ActivateAction", "sava{sv}", "quit", "0", "0")
    assert desktop.application.wait(60) == 0, desktop.log()  # else there are leaks
    if keeps_what_is_freed:
        return
    for name, (first, last) in figures.items():
        assert last[1] - first[1] < MOST_GROWTH, name


main({"short": lambda desktop: use(desktop, 150, 1000), "long": lambda desktop: use(desktop, 1000, 10000)})
