"""A day with a schedule, set up by mouse alone, at a time of day that the test sets."""

import glob

import screen_reader
from desktop import main, wait_until

HOUR = 3600
NEUTRAL = (65535, 65535, 65535)
AT_3400 = (65535, 48740, 34739)
AT_2700 = (65535, 42847, 22463)
SLIDER_THUMB = 18


class Day:
    """The application with a clock of its own, and its Settings window."""

    def __init__(self, desktop):
        self.desktop = desktop
        self.clock = desktop.home / "clock"
        self.set_clock("2026-06-15 08:00:00")
        library, = glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")
        desktop.start_application(LD_PRELOAD=library, FAKETIME_TIMESTAMP_FILE=str(self.clock), FAKETIME_NO_CACHE="1",
                                  FAKETIME_DONT_FAKE_MONOTONIC="1", TZ="UTC")
        desktop.wait_for_icon()
        desktop.click(*desktop.icon)
        self.press("Settings")
        self.choose_tab("Schedule")

    def set_clock(self, time):
        replacement = self.clock.with_suffix(".new")
        replacement.write_text(time)
        replacement.rename(self.clock)

    def press(self, button, role="push button"):
        screen_reader.click_on(self.desktop, role, button)

    def choose_tab(self, tab):
        self.press(tab, "page tab")

    def set_entry(self, hours=0, kelvin=None):
        """In the editor: steps the time by so many hours, sets the temperature, and saves."""
        for _ in range(abs(hours)):
            self.press("Later" if hours > 0 else "Earlier")
        if kelvin:
            x, y, width, height = screen_reader.extents("slider", "Temperature")
            travelled = (kelvin - 1000) / 5500 * (width - SLIDER_THUMB)
            self.desktop.click(x + SLIDER_THUMB / 2 + travelled, y + height / 2)
            wait_until(lambda: screen_reader.value("slider", "Temperature") == kelvin, f"no {kelvin} K at the slider")
        self.save()

    def save(self):
        self.press("Save")
        screen_reader.wait_until_gone("dialog", "Edit Schedule Entry")

    def rows(self):
        """The entries as they are read out."""
        names = [button.get_name() for button in screen_reader.elements("push button")]
        return [name for name in names if ":" in name and not name.startswith(("Edit ", "Delete "))]

    def expect_rows(self, *rows):
        wait_until(lambda: self.rows() == list(rows), f"the rows are not {rows}")

    def expect_white_point(self, white_point):
        wait_until(lambda: self.desktop.white_point() == white_point, f"the display does not show {white_point}")

    def look_at(self, time, white_point, *rows):
        self.set_clock(time)
        self.expect_white_point(white_point)
        self.choose_tab("General")  # the mark is brought up to date when its tab is shown, else once a minute
        self.choose_tab("Schedule")
        self.expect_rows(*rows)


def by_mouse_alone(desktop):
    day = Day(desktop)
    screen_reader.element("label", "No schedule entries. Add one to get started.")
    day.press("Add Schedule Entry")
    day.set_entry(hours=-5, kelvin=6500)
    day.expect_rows("7:00 AM, Normal (Daylight), active")
    day.press("Add Schedule Entry")
    day.set_entry(hours=9, kelvin=3400)
    day.press("Add Schedule Entry")
    day.press("Cancel")  # it is the last entry of the day that it opens
    day.press("Edit 12:00 PM")
    day.set_entry(kelvin=2700)
    day.expect_rows("7:00 AM, Normal (Daylight), active", "12:00 PM, 2700K", "9:00 PM, 3400K")
    day.press("Enable Schedule", "check box")
    wait_until(lambda: desktop.setting("ScheduleEnabled") == "true", "the schedule is not switched on")

    day.look_at("2026-06-15 12:00:00", AT_2700,
                "7:00 AM, Normal (Daylight)", "12:00 PM, 2700K, active", "9:00 PM, 3400K")
    night = ("7:00 AM, Normal (Daylight)", "12:00 PM, 2700K", "9:00 PM, 3400K, active")
    day.look_at("2026-06-15 21:00:00", AT_3400, *night)
    day.look_at("2026-06-16 06:59:00", AT_3400, *night)

    day.press("12:00 PM, 2700K")
    day.press("Enabled", "check box")
    day.save()
    day.look_at("2026-06-16 13:00:00", NEUTRAL,
                "7:00 AM, Normal (Daylight), active", "12:00 PM, 2700K, disabled", "9:00 PM, 3400K")
    day.press("Delete 7:00 AM")
    day.expect_rows("12:00 PM, 2700K, disabled", "9:00 PM, 3400K, active")
    day.expect_white_point(AT_3400)
    wait_until(lambda: desktop.schedule() == [(12 * HOUR, 2700, False), (21 * HOUR, 3400, True)], "it is not stored")


main({"by-mouse-alone": by_mouse_alone})
