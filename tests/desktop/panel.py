"""The icon, its menu and its panel under real tray hosts, by mouse."""

import screen_reader
from desktop import AT_2700, AT_3400, NEUTRAL, main, wait_until

SLIDER = ("slider", "Color temperature")
SCHEDULE = ("check box", "Enable Schedule")
ROOM = 3  # around the slider, for its thumb's shadow


def icon(desktop):
    desktop.start_application()
    for close in lambda: desktop.key("Escape"), lambda: desktop.click(200, 500), lambda: desktop.click(*desktop.icon):
        desktop.open_panel()
        close()
        screen_reader.wait_until_gone(*SLIDER)
    # What the host made of that click comes before its request for the menu.
    open_menu(desktop)
    assert not screen_reader.elements(*SLIDER), "the click that closed the panel opened it again"
    desktop.key("Down", "Return")
    screen_reader.element("frame", "Ambertide Settings")
    open_menu(desktop)
    desktop.key("Down", "Down", "Return")
    screen_reader.element("dialog", "Software Update")
    open_menu(desktop)
    desktop.key("Up", "Return")
    assert desktop.application.wait(20) == 0


def open_menu(desktop):
    """Xfce's panel has its icons drawn by a program of its own, with one window until there is a menu."""
    desktop.click(*desktop.icon, button=3)
    wait_until(lambda: len(desktop.xdotool("search", "--onlyvisible", "--class", "wrapper-2.0")) == 2, "no menu opens")


def use(desktop):
    """What every host must get right."""
    desktop.start_application()
    desktop.open_panel()
    drag = [(258, 0), (200, 50), (-300, 0), (108, 0)]  # from the track's start, and its middle; the thumb is at 6500 K
    for on_the_row, path, kelvin, text, white_point in (
            (0.01, drag, 3400, "3400K (Halogen)", AT_3400),
            (0.95, [(83, 0)], 2700, "2700K (Tungsten)", AT_2700)):  # would be 2800 K by a drag
        x, y, width, height = screen_reader.extents(*SCHEDULE)
        desktop.click(x + width * on_the_row, y + height / 2)
        wait_until(lambda: screen_reader.is_checked(*SCHEDULE), "the row does not switch the schedule on")
        x, y, width, height = screen_reader.extents(*SLIDER)
        assert width == 268 + 2 * ROOM, width
        desktop.drag(*((x + ROOM + right, y + height / 2 + down) for right, down in path))
        wait_until(lambda: text in screen_reader.texts(), f"the panel does not say {text!r}")
        wait_until(lambda: desktop.white_point() == white_point, f"the display does not show {kelvin} K")
        assert desktop.tool("get") == str(kelvin) and not screen_reader.is_checked(*SCHEDULE)
    screen_reader.click_on(desktop, "push button", "Settings")
    screen_reader.element("frame", "Ambertide Settings")
    screen_reader.wait_until_gone(*SLIDER)
    desktop.open_panel()
    screen_reader.click_on(desktop, "push button", "Quit Ambertide")
    assert desktop.application.wait(20) == 0
    wait_until(lambda: desktop.white_point() == NEUTRAL, "the display is not given back")


main({"icon": icon, "use": use})
