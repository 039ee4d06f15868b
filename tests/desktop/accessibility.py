"""Everything is reached by screen reader and by keyboard alone."""

import os

import screen_reader
from desktop import main, wait_until

SLIDER = ("slider", "Color temperature")
SCHEDULE = ("check box", "Enable Schedule")
PANEL = [("push button", "Settings"), SLIDER, SCHEDULE, ("push button", "Quit Ambertide")]
TOOL = "Uninstall" if os.path.lexists("/usr/local/bin/ambertide") else "Install"
TABS = [("page tab", "General"), ("page tab", "Schedule")]
# This build has no key for a feed, and so nothing about updates.
GENERAL = [("push button", "Web page"), ("check box", "Start at login"), ("push button", TOOL)]
ENTRY = [("push button", "12:00 PM, 3800K, active"), ("push button", "Edit 12:00 PM"),
         ("push button", "Delete 12:00 PM")]
ADD = ("push button", "Add Schedule Entry")
EDITOR = [("spin button", "Time"), ("push button", "Earlier"), ("push button", "Later"), ("slider", "Temperature"),
          ("check box", "Enabled"), ("push button", "Cancel"), ("push button", "Save")]
CONTROLS = {role for role, _ in PANEL + TABS + GENERAL + EDITOR} | {"text", "combo box", "list item", "radio button"}


def expect_controls(*window, controls):
    """Just these, in the order of reading."""
    wait_until(lambda: screen_reader.outline(*window, roles=CONTROLS) == controls, f"{window} has not just {controls}")


def without_mouse(desktop):
    desktop.start_application()
    desktop.open_panel()
    expect_controls("frame", "Ambertide", controls=PANEL)
    screen_reader.set_value(*SLIDER, 3400)
    wait_until(lambda: desktop.tool("get") == "3400", "the model does not follow")
    assert "3400K (Halogen)" in screen_reader.texts()
    desktop.tool("set", "2700")
    wait_until(lambda: screen_reader.element(*SLIDER).get_description() == "2700 K", "the slider does not follow")
    for keys, kelvin in ((("Home",), "1000"), (("Right", "Up", "Left"), "1100"), (("Prior",), "1600")):
        press(desktop, SLIDER, *keys)
        wait_until(lambda: desktop.tool("get") == kelvin, f"{keys} do not lead to {kelvin} K")
    for key in "space", "Return":
        before = screen_reader.is_checked(*SCHEDULE)
        press(desktop, SCHEDULE, key)
        wait_until(lambda: screen_reader.is_checked(*SCHEDULE) != before, f"{key} does not switch the schedule")
    press(desktop, PANEL[0], "Return")
    wait_until(lambda: screen_reader.focused() is not None, "nothing in Settings has the keyboard")
    press(desktop, TABS[0], "Right")
    press(desktop, ADD, "Return")
    expect_controls("dialog", "Edit Schedule Entry", controls=EDITOR)
    press(desktop, EDITOR[-1], "space")
    expect_controls("frame", "Ambertide Settings", controls=TABS + [SCHEDULE, *ENTRY, ADD])
    press(desktop, ENTRY[0], "Delete")
    screen_reader.wait_until_gone(*ENTRY[0])
    screen_reader.act(*TABS[0])
    expect_controls("frame", "Ambertide Settings", controls=TABS + GENERAL)
    desktop.key("ctrl+w")
    screen_reader.wait_until_gone("frame", "Ambertide Settings")
    desktop.open_panel()
    press(desktop, PANEL[-1], "Return")
    assert desktop.application.wait(20) == 0


def press(desktop, control, *keys):
    """Once Tab has led there."""
    wait_until(lambda: screen_reader.elements(*control), f"there is no {control}")
    for _ in range(20):
        before = screen_reader.focused()
        if before == control:
            return desktop.key(*keys)
        desktop.key("Tab")
        # The field has three parts: hour, minute and half of the day.
        wait_until(lambda: before == EDITOR[0] or screen_reader.focused() not in (None, before), f"Tab keeps {before}")
    raise AssertionError(f"Tab does not come to {control}")


main({"without-mouse": without_mouse})
