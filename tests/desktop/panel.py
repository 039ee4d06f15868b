"""The icon and its panel under real tray hosts, by mouse."""

import screen_reader
from desktop import main, wait_until

SLIDER = ("slider", "Color temperature")
SCHEDULE = ("check box", "Enable Schedule")
NEUTRAL = (65535, 65535, 65535)
AT_3400 = (65535, 48740, 34739)
AT_2700 = (65535, 42847, 22463)
THUMB = 20


def start(desktop):
    desktop.start_application()
    desktop.wait_for_icon()


def open_panel(desktop):
    """Clicks again while the click counts as part of the one that has closed the panel."""
    def is_open():
        if screen_reader.elements(*SLIDER):
            return True
        desktop.click(*desktop.icon)
        try:
            return wait_until(lambda: screen_reader.elements(*SLIDER), "", seconds=2)
        except TimeoutError:
            return False

    wait_until(is_open, "a click on the icon opens no panel")


def wait_until_closed():
    screen_reader.wait_until_gone(*SLIDER)


def expect_temperature(desktop, kelvin, text, white_point):
    wait_until(lambda: text in screen_reader.texts(), f"the panel does not say {text!r}")
    wait_until(lambda: desktop.white_point() == white_point, f"the display does not show {kelvin} K")
    wait_until(lambda: float(desktop.setting("Temperature") or 0) == kelvin, f"{kelvin} K is not stored")
    assert desktop.tool("get") == str(kelvin)


def drag_thumb(desktop, pixel):
    x, y, width, _ = screen_reader.extents(*SLIDER)
    assert width == 268, width
    value = screen_reader.value(*SLIDER)
    thumb = x + (value - 1000) / 5500 * (width - THUMB) + THUMB / 2
    desktop.drag((thumb, y + 10), (x + 200, y + 60), (x - 300, y), (x + pixel, y + 10))


def tap_track(desktop, pixel):
    x, y, _, _ = screen_reader.extents(*SLIDER)
    desktop.click(x + pixel, y + 10)


def opening_and_closing(desktop):
    start(desktop)
    open_panel(desktop)
    desktop.key("Escape")
    wait_until_closed()
    open_panel(desktop)
    desktop.click(200, 500)
    wait_until_closed()
    open_panel(desktop)
    desktop.click(*desktop.icon)
    wait_until_closed()
    # What the host made of that click comes before its request for the menu.
    open_menu(desktop)
    assert not screen_reader.elements(*SLIDER), "the click that closed the panel opened it again"
    desktop.key("Escape")


def open_menu(desktop):
    """Xfce's panel has its icons drawn by a program of its own, with one window until there is a menu."""
    desktop.click(*desktop.icon, button=3)
    wait_until(lambda: len(desktop.xdotool("search", "--onlyvisible", "--class", "wrapper-2.0")) == 2, "no menu opens")


def temperature(desktop):
    start(desktop)
    open_panel(desktop)
    screen_reader.click_on(desktop, *SCHEDULE)
    wait_until(lambda: desktop.setting("ScheduleEnabled") == "true", "the row does not switch the schedule on")
    assert screen_reader.is_checked(*SCHEDULE)
    drag_thumb(desktop, 108)  # of 248
    expect_temperature(desktop, 3400, "3400K (Halogen)", AT_3400)
    assert desktop.setting("ScheduleEnabled") == "false" and not screen_reader.is_checked(*SCHEDULE)

    screen_reader.click_on(desktop, *SCHEDULE)
    wait_until(lambda: screen_reader.is_checked(*SCHEDULE), "the row does not switch the schedule on again")
    tap_track(desktop, 83)  # of 268; a drag there would give 2800
    expect_temperature(desktop, 2700, "2700K (Tungsten)", AT_2700)
    assert desktop.setting("ScheduleEnabled") == "false" and not screen_reader.is_checked(*SCHEDULE)

    screen_reader.click_on(desktop, "push button", "Settings")
    screen_reader.element("frame", "Ambertide Settings")
    wait_until_closed()


def menu(desktop):
    start(desktop)
    open_menu(desktop)
    desktop.key("Down", "Return")
    screen_reader.element("frame", "Ambertide Settings")
    open_menu(desktop)
    desktop.key("Down", "Down", "Return")
    screen_reader.element("dialog", "Software Update")
    open_menu(desktop)
    desktop.key("Up", "Return")
    assert desktop.application.wait(20) == 0


def quitting(desktop):
    """What every host must get right."""
    start(desktop)
    open_panel(desktop)
    drag_thumb(desktop, 108)
    expect_temperature(desktop, 3400, "3400K (Halogen)", AT_3400)
    screen_reader.click_on(desktop, "push button", "Quit Ambertide")
    assert desktop.application.wait(20) == 0
    wait_until(lambda: desktop.white_point() == NEUTRAL, "the display is not given back")


main({"opening-and-closing": opening_and_closing, "temperature": temperature, "menu": menu, "quitting": quitting})
