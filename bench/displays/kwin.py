"""kwin.py <part>...: the job for KWin, which tints by its own Night Light; one output, and two for plugging. Parts:
plain, drag, ends, plugging, kills:<number>."""
import itertools
import pathlib
import signal
import subprocess
import sys
import threading
import time

from machine import USER, Hardware, as_user, plug, row, set_temperature, tool, wait_for, white_point
from measures import Job

KWINRC = pathlib.Path(USER.pw_dir, ".config/kwinrc")
STATE = pathlib.Path(USER.pw_dir, ".local/state/ambertide/night-light")
NIGHT_LIGHT = ("org.kde.KWin", "/org/kde/KWin/NightLight", "org.kde.KWin.NightLight")

SESSION = """export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=KDE KWIN_COMPOSE=Q
mkdir -p ~/.config
exec kwin_wayland --no-lockscreen --no-global-shortcuts
"""


def content(path):
    try:
        return path.read_bytes()
    except FileNotFoundError:
        return b""


def settings():
    """The Night Light settings in kwinrc; KWin itself writes others into the same file."""
    lines = content(KWINRC).split(b"[NightColor]", 1)[-1].split(b"\n[", 1)[0].split(b"\n")
    return sorted(line.strip() for line in lines if line.strip())


def output(*command):
    return as_user(*command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).communicate()[0]


def night_light(name):
    return (output("busctl", "--user", "get-property", *NIGHT_LIGHT, name).split() or [None])[-1]


def note_announcements():
    """Notes each moment at which somebody tells KWin of a change of kwinrc."""
    monitor = as_user("dbus-monitor", "--profile", "path=/kwinrc", stdout=subprocess.PIPE, text=True)
    for line in monitor.stdout:
        if "ConfigChanged" in line:
            announced.append(time.monotonic())


class Screen(Hardware):
    """Errors are those of green and blue as shares of red, read from a dark grey: KWin 6.7 preserves luminance where it
    can, and so cuts off red in bright greys."""

    TOLERANCE, UNIT = 0.023, "of 1"

    def worst_error(self, kelvin, entry=None):
        crtcs = (entry or self.newest())[1].values()
        greys = [levels[min(index for index in levels if index > 0)] for levels in crtcs]
        return max((abs(level / grey[0] - share) for grey in greys for level, share in zip(grey, white_point(kelvin))),
                   default=1)


def is_given_back():
    return settings() == untouched and content(STATE) == b""


def milliseconds_until(condition, moment):
    """How long after `moment` the condition came true; None when it did not."""
    return 1000 * (time.monotonic() - moment) if wait_for(condition, 3) else None


class KWin(Job):
    LEVELS = "{} K: white off by"
    PLUGGED, KILLED = None, 100

    def back_since(self, moment, what, reach=None):
        """Rows for the way back, which began at `moment` with neutral, quit or a signal."""
        row(f"{what}: settings back after", milliseconds_until(lambda: settings() == untouched, moment), "ms", reach)
        wait_for(lambda: self.hardware.history[-1][0] > moment, 5)
        last = self.hardware.rested()
        row(f"{what}: screen back after", last[0] - moment if self.hardware.is_neutral() else None, "s", 2.1)
        row(f"{what}: nothing left borrowed", content(STATE) == b"")

    def tinted(self):
        application = self.start()
        set_temperature(3400)
        wait_for(lambda: b"Constant" in content(KWINRC), 10)
        time.sleep(1)
        self.hardware.rested()
        return application

    def ramp(self, before, kelvin):
        """Measures KWin's own ramp, in steps of 50 K and a last part of one, which makes small ones longer."""
        asked = set_temperature(kelvin)
        wait_for(lambda: settings() != untouched and self.hardware.history[-1][0] > asked, 5)
        self.hardware.rested()
        times = [moment for moment, _ in self.hardware.since(asked)]
        length = times[-1] - times[0] + 2 / len(times)
        if before == 6500:
            row("length of the session's first ramp on the screen", length, "s")
        else:
            row(f"length of a ramp of {'at least' if abs(kelvin - before) >= 1000 else 'less than'} 1000 K", length, "s", 2.1)
        self.levels(kelvin)

    def plain(self):
        application = self.start()
        for before, kelvin in itertools.pairwise((6500, 2700, 3400, 2000, 4500, 5500, 6000)):
            self.ramp(before, kelvin)
        set_temperature(3400)
        self.hardware.rested()
        self.back_since(set_temperature(6500), "neutral")
        row("neutral: kwinrc as before, byte for byte", content(KWINRC) == original)
        application.quit()

    def drag(self):
        application = self.tinted()
        time.sleep(3)
        told = len(announced)
        begun = time.monotonic()
        for i in range(30):
            tool("set", str(3400 + 80 * i))
        tool("set", "2700")
        time.sleep(1.5)
        self.hardware.rested(1.2)
        row("drag: requests a second", (len(announced) - told - 1) / (announced[-1] - begun), "", 1.1)
        self.levels(2700)
        application.quit()

    def ends(self):
        self.back_since(self.tinted().quit(), "quit")
        for number in (signal.SIGTERM, signal.SIGKILL):
            self.back_since(self.tinted().end(number), number.name, 100)

    def plugging(self):
        application = self.tinted()
        plug(1, True)
        row("second output plugged in: tinted",
            wait_for(lambda: len(self.hardware.whites()) == 2 and self.hardware.shows(3400), 10))
        application.quit()
        super().plugging()

    def restored_to(self, own):
        return lambda moment: milliseconds_until(is_given_back, moment)

    def kills(self, count):
        super().kills(count)
        row("screen neutral in the end",
            self.hardware.settled(time.monotonic(), self.hardware.is_neutral) is not None)
        row("nothing left borrowed", is_given_back())


screen = Screen(2)
plug(1, False)
job = KWin(SESSION, ["kwin_wayland", "--version"], screen)
wait_for(lambda: night_light("available") == "true", 40)
announced = []
threading.Thread(target=note_announcements, daemon=True).start()
time.sleep(3)
with open(KWINRC, "a", encoding="utf8") as file:
    file.write("\n[NightColor]\nNightTemperature=4100\r\n\n[Of somebody else]\nKey[de]=Wert\n")
subprocess.run(["chown", "lab:lab", KWINRC])
untouched, original = settings(), content(KWINRC)
job.run(sys.argv[1:])
