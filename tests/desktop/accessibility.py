"""Everything is reached by screen reader and by keyboard alone."""

import os

import screen_reader
from desktop import main, wait_until
from screen_reader import State

SLIDER = ("slider", "Color temperature")
SCHEDULE = ("check box", "Enable Schedule")
PANEL = [("push button", "Settings"), SLIDER, SCHEDULE, ("push button", "Quit Ambertide")]
TOOL = "Uninstall" if os.path.lexists("/usr/local/bin/ambertide") else "Install"
TABS = [("page tab", "General"), ("page tab", "Schedule")]
GENERAL = [("push button", "Web page"), ("push button", "Check for Updates..."), ("check box", "Start at login"),
           ("check box", "Automatically check for updates"), ("push button", TOOL)]
ENTRY = [("push button", "12:00 PM, 3800K, active"), ("push button", "Edit 12:00 PM"),
         ("push button", "Delete 12:00 PM")]
ADD = ("push button", "Add Schedule Entry")
EDITOR = [("spin button", "Time"), ("push button", "Later"), ("push button", "Earlier"), ("slider", "Temperature"),
          ("check box", "Enabled"), ("push button", "Cancel"), ("push button", "Save")]
CONTROLS = {role for role, _ in PANEL + TABS + GENERAL + EDITOR} | {"text", "combo box", "list item", "radio button"}


def expect_controls(*window, controls):
    """Just these, in this order, each of them working."""
    wait_until(lambda: screen_reader.outline(*window, roles=CONTROLS) == controls, f"{window} has not just {controls}")
    for control in controls:
        assert screen_reader.has_state(screen_reader.element(*control), State.ENABLED), control


def windows(desktop):
    desktop.start_application()
    desktop.wait_for_icon()
    desktop.click(*desktop.icon)
    expect_controls("frame", "Ambertide", controls=PANEL)
    desktop.key("Escape")
    desktop.show_settings()
    expect_controls("frame", "Ambertide Settings", controls=TABS + GENERAL)
    screen_reader.act("page tab", "Schedule")
    expect_controls("frame", "Ambertide Settings", controls=TABS + [SCHEDULE, ADD])
    screen_reader.act(*ADD)
    expect_controls("dialog", "Edit Schedule Entry", controls=EDITOR)
    screen_reader.act("push button", "Save")
    expect_controls("frame", "Ambertide Settings", controls=TABS + [SCHEDULE, *ENTRY, ADD])
    screen_reader.act("page tab", "General")
    screen_reader.act("push button", "Check for Updates...")
    screen_reader.element("dialog", "Software Update")
    expect_controls("dialog", "Software Update", controls=[("push button", "OK")])


def set_value(desktop):
    desktop.start_application()
    desktop.wait_for_icon()
    desktop.click(*desktop.icon)
    slider = screen_reader.element(*SLIDER)
    assert screen_reader.Atspi.Value.get_minimum_value(slider) == 1000
    assert screen_reader.Atspi.Value.get_maximum_value(slider) == 6500
    screen_reader.Atspi.Value.set_current_value(slider, 3400)
    wait_until(lambda: desktop.tool("get") == "3400", "the model does not follow")
    assert "3400K (Halogen)" in screen_reader.texts() and slider.get_description() == "3400 K"
    desktop.tool("set", "2700")
    wait_until(lambda: slider.get_description() == "2700 K", "the slider does not follow")


def keyboard(desktop):
    desktop.start_application()
    desktop.wait_for_icon()
    desktop.click(*desktop.icon)
    order = []
    for _ in range(len(PANEL) + 1):
        wait_until(lambda: screen_reader.focused() not in (None, *order[-1:]), "the focus does not move")
        order.append(screen_reader.focused())
        desktop.key("Tab")
    first = PANEL.index(order[0])
    assert order == PANEL[first:] + PANEL[:first] + PANEL[first:first + 1], order

    focus(desktop, SLIDER)
    for keys, kelvin in ((("Home",), "1000"), (("Right", "Up", "Left"), "1100"), (("Prior",), "1600"), (("End",), "6500")):
        desktop.key(*keys)
        wait_until(lambda: desktop.tool("get") == kelvin, f"{keys} do not lead to {kelvin} K")
    focus(desktop, SCHEDULE)
    for key in "space", "Return":
        before = screen_reader.is_checked(*SCHEDULE)
        desktop.key(key)
        wait_until(lambda: screen_reader.is_checked(*SCHEDULE) != before, f"{key} does not switch the schedule")
    focus(desktop, PANEL[0])
    desktop.key("Return")
    wait_until(lambda: screen_reader.focused() is not None, "nothing in Settings has the keyboard")
    focus(desktop, TABS[0])
    desktop.key("Right")
    focus(desktop, ADD)
    desktop.key("Return")
    focus(desktop, ("push button", "Save"))
    desktop.key("space")
    focus(desktop, ENTRY[0])
    desktop.key("Return")
    screen_reader.element("dialog", "Edit Schedule Entry")
    desktop.key("Escape")
    focus(desktop, ENTRY[0])
    desktop.key("Delete")
    screen_reader.wait_until_gone(*ENTRY[0])
    desktop.key("ctrl+w")
    screen_reader.wait_until_gone("frame", "Ambertide Settings")
    desktop.click(*desktop.icon)
    focus(desktop, PANEL[-1])
    desktop.key("Return")
    assert desktop.application.wait(20) == 0


def focus(desktop, control):
    """By Tab."""
    wait_until(lambda: screen_reader.elements(*control), f"there is no {control}")
    for _ in range(20):
        before = screen_reader.focused()
        if before == control:
            return
        parts = 3 if before == EDITOR[0] else 1  # hour, minute and half of the day
        desktop.key(*["Tab"] * parts)
        wait_until(lambda: screen_reader.focused() not in (None, before), f"Tab does not leave {before}")
    raise AssertionError(f"Tab does not come to {control}")


main({"windows": windows, "set-value": set_value, "keyboard": keyboard})
