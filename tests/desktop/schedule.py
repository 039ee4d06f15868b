"""A day with a schedule, set up by mouse alone, at a time of day that the test sets."""

import screen_reader
from desktop import AT_2700, AT_3400, NEUTRAL, main, wait_until

HOUR = 3600
THUMB = 18
RING = 2  # around the slider's thumb


class Day:
    """The application with a clock of its own, and its Settings window."""

    def __init__(self, desktop):
        self.desktop = desktop
        desktop.start_application(**desktop.clock("2026-06-15 08:00:00"))
        desktop.open_panel()
        self.press("Settings")
        self.press("Schedule", "page tab")

    def press(self, button, role="push button"):
        screen_reader.click_on(self.desktop, role, button)

    def save(self, hours=0, kelvin=None):
        """In the editor: steps the time by so many hours, sets the temperature, and saves."""
        for _ in range(abs(hours)):
            self.press("Later" if hours > 0 else "Earlier")
        if kelvin:
            x, y, width, height = screen_reader.extents("slider", "Temperature")
            travelled = (kelvin - 1000) / 5500 * (width - THUMB - 2 * RING)
            self.desktop.click(x + RING + THUMB / 2 + travelled, y + height / 2)
            wait_until(lambda: screen_reader.value("slider", "Temperature") == kelvin, f"no {kelvin} K at the slider")
        self.press("Save")
        screen_reader.wait_until_gone("dialog", "Edit Schedule Entry")

    def rows(self):
        """The entries as they are read out."""
        names = [button.get_name() for button in screen_reader.elements("push button")]
        return [name for name in names if ":" in name and not name.startswith(("Edit ", "Delete "))]

    def expect_rows(self, *rows):
        wait_until(lambda: self.rows() == list(rows), f"the rows are not {rows}")

    def look_at(self, time, white_point, *rows):
        self.desktop.clock(time)
        wait_until(lambda: self.desktop.white_point() == white_point, f"the display does not show {white_point}")
        for tab in "General", "Schedule":  # the mark is brought up to date when its tab is shown, else once a minute
            self.press(tab, "page tab")
        self.expect_rows(*rows)


def by_mouse_alone(desktop):
    day = Day(desktop)
    for hours, kelvin in ((-5, 6500), (9, 3400)):
        day.press("Add Schedule Entry")
        day.save(hours, kelvin)
    day.press("Add Schedule Entry")
    day.press("Cancel")  # it is the last entry of the day that it opens
    day.press("Edit 12:00 PM")
    day.save(kelvin=2700)
    day.expect_rows("7:00 AM, Normal (Daylight), active", "12:00 PM, 2700K", "9:00 PM, 3400K")
    day.press("Enable Schedule", "check box")
    wait_until(lambda: desktop.setting("ScheduleEnabled") == "true", "the schedule is not switched on")
    day.look_at("2026-06-15 12:00:00", AT_2700,
                "7:00 AM, Normal (Daylight)", "12:00 PM, 2700K, active", "9:00 PM, 3400K")
    day.look_at("2026-06-16 06:59:00", AT_3400,
                "7:00 AM, Normal (Daylight)", "12:00 PM, 2700K", "9:00 PM, 3400K, active")
    day.press("12:00 PM, 2700K")
    day.press("Enabled", "check box")
    day.save()
    day.look_at("2026-06-16 13:00:00", NEUTRAL,
                "7:00 AM, Normal (Daylight), active", "12:00 PM, 2700K, disabled", "9:00 PM, 3400K")
    day.press("Delete 7:00 AM")
    day.expect_rows("12:00 PM, 2700K, disabled", "9:00 PM, 3400K, active")
    wait_until(lambda: desktop.white_point() == AT_3400, "the display does not follow")
    wait_until(lambda: desktop.schedule() == [(12 * HOUR, 2700, False), (21 * HOUR, 3400, True)], "it is not stored")


main({"by-mouse-alone": by_mouse_alone})
