"""Memory after long use: windows opened and closed, the slider moved."""

import pathlib
import re

import screen_reader
from desktop import main, wait_until

WARM_UP = 100
MOST_GROWTH = 1024  # KiB


def memory(desktop):
    """Proportional set size and memory of its own, in KiB. The first also depends on who else uses the same libraries."""
    text = pathlib.Path(f"/proc/{desktop.application.pid}/smaps_rollup").read_text()
    figures = dict(re.findall(r"^(\w+):\s+(\d+) kB$", text, re.MULTILINE))
    return int(figures["Pss"]), int(figures["Anonymous"])


def expect_windows(count):
    wait_until(lambda: screen_reader.application().get_child_count() == count, f"there are not {count} windows")


def open_and_close(desktop, show, close, count):
    for _ in range(count):
        show()
        expect_windows(1)
        wait_until(screen_reader.focused, "the window gets no keyboard")
        desktop.key(close)
        expect_windows(0)


def move_slider(desktop, count):
    desktop.activate()
    x, y, width, height = screen_reader.extents("slider", "Color temperature")
    start, middle = x + width - height / 2, y + height / 2
    # In pieces, since nobody moves faster than the events are taken.
    for _ in range(count // WARM_UP):
        desktop.drag((start, middle), *((x + step * 53 % width, middle) for step in range(1, WARM_UP)),
                     (x + width, middle))
    desktop.drag((start, middle), (x, middle))
    wait_until(lambda: screen_reader.value("slider", "Color temperature") == 1000, "the slider was not held")
    desktop.tool("set", "6500")
    desktop.key("Escape")
    expect_windows(0)


def use(desktop, rounds, moves):
    figures = {}
    desktop.start_application()
    desktop.wait_for_icon()

    def measure(name, use_it, count):
        use_it(WARM_UP)
        before = memory(desktop)
        use_it(count)
        figures[name] = before, memory(desktop)
        print(f"{name}: KiB proportional and own: {before} after the first {WARM_UP}, {figures[name][1]} at the end",
              flush=True)

    measure("panel", lambda count: open_and_close(desktop, desktop.activate, "Escape", count), rounds - WARM_UP)
    measure("Settings", lambda count: open_and_close(desktop, desktop.show_settings, "ctrl+w", count), rounds - WARM_UP)
    measure("slider", lambda count: move_slider(desktop, count), moves)
    keeps_what_is_freed = "libasan" in pathlib.Path(f"/proc/{desktop.application.pid}/maps").read_text()
    desktop.call("ActivateAction", "sava{sv}", "quit", "0", "0")
    assert desktop.application.wait(60) == 0, desktop.log()  # else there are leaks
    for name, (first, last) in figures.items():
        assert keeps_what_is_freed or last[1] - first[1] < MOST_GROWTH, name


main({"short": lambda desktop: use(desktop, 150, 1000), "long": lambda desktop: use(desktop, 1000, 10000)})
