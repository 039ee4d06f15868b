"""A day with a schedule, set up by mouse alone, at a time of day that the test sets."""

import screen_reader
from desktop import AT_2700, AT_3400, NEUTRAL, main, wait_until

THUMB = 18
RING = 2  # around the slider's thumb


def by_mouse_alone(desktop):
    def press(*buttons, role="push button"):
        for button in buttons:
            screen_reader.click_on(desktop, role, button)

    def save(kelvin):
        x, y, width, height = screen_reader.extents("slider", "Temperature")
        travelled = (kelvin - 1000) / 5500 * (width - THUMB - 2 * RING)
        desktop.click(x + RING + THUMB / 2 + travelled, y + height / 2)
        press("Save")
        screen_reader.wait_until_gone("dialog", "Edit Schedule Entry")

    def look_at(time, white_point, *rows):
        desktop.clock(time)
        wait_until(lambda: desktop.white_point() == white_point, f"the display does not show {white_point}")
        press("General", "Schedule", role="page tab")  # brings the mark up to date, which else takes up to a minute
        for row in rows:
            screen_reader.element("push button", row)

    desktop.start_application(**desktop.clock("2026-06-15 08:00:00"))
    desktop.open_panel()
    press("Settings")
    press("Schedule", role="page tab")
    press("Add Schedule Entry", *["Later"] * 9)
    save(3400)
    press("Add Schedule Entry", "Later", "Cancel")  # opens the last entry of the day, which stays as it was
    press("Edit 12:00 PM", *["Earlier"] * 5)
    save(2700)
    press("Enable Schedule", role="check box")
    look_at("2026-06-15 12:00:00", AT_2700, "7:00 AM, 2700K, active", "9:00 PM, 3400K")
    look_at("2026-06-16 06:59:00", AT_3400, "7:00 AM, 2700K", "9:00 PM, 3400K, active")
    press("7:00 AM, 2700K")
    save(6500)
    look_at("2026-06-16 13:00:00", NEUTRAL, "7:00 AM, Normal (Daylight), active", "9:00 PM, 3400K")
    press("Delete 7:00 AM")
    wait_until(lambda: desktop.white_point() == AT_3400, "the display does not follow")


main({"by-mouse-alone": by_mouse_alone})
