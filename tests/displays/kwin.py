"""kwin.py [kills]: the job for KWin, which tints by its own Night Light; one output and then another."""
import random
import re
import signal
import subprocess
import sys
import threading
import time

from machine import Application, Hardware, Session, as_user, plug, row, set_temperature, tool, wait_for, white_point

kills = int(sys.argv[1]) if len(sys.argv) > 1 else 0
HOME = subprocess.run("echo ~lab", shell=True, capture_output=True, text=True).stdout.strip()
KWINRC, STATE = f"{HOME}/.config/kwinrc", f"{HOME}/.local/state/ambertide/night-light"
NIGHT_LIGHT = ("org.kde.KWin", "/org/kde/KWin/NightLight", "org.kde.KWin.NightLight")

session_script = """export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=KDE KWIN_COMPOSE=Q
mkdir -p ~/.config
exec kwin_wayland --no-lockscreen --no-global-shortcuts
"""


def content(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except FileNotFoundError:
        return b""


def settings():
    """The user's, of Night Light; KWin itself writes others into the same file."""
    lines = content(KWINRC).split(b"[NightColor]", 1)[-1].split(b"\n[", 1)[0].split(b"\n")
    return sorted(line.strip() for line in lines if line.strip())


def output(*command):
    return as_user(*command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).communicate()[0]


def night_light(name):
    return (output("busctl", "--user", "get-property", *NIGHT_LIGHT, name).split() or [None])[-1]


class Announcements:
    """When somebody told KWin of a change, and when it told what it shows."""

    def __init__(self):
        monitor = as_user("dbus-monitor", "--profile", "path=/kwinrc", f"path={NIGHT_LIGHT[1]}", stdout=subprocess.PIPE,
                          text=True)
        self.changes, self.steps = [], []
        threading.Thread(target=lambda: [self._note(line) for line in monitor.stdout], daemon=True).start()

    def _note(self, line):
        if "ConfigChanged" in line:
            self.changes.append(time.monotonic())
        elif "PropertiesChanged" in line:
            self.steps.append(time.monotonic())


def whites_since(start):
    """What the first display shows from then on. While KWin replaces a table, its reader sees none for a moment."""
    seen = [(moment, min(hardware.whites((moment, crtcs)), default=None)) for moment, crtcs in hardware.since(start)]
    return [entry for entry, following in zip(seen, seen[1:] + [(time.monotonic(), None)])
            if entry[1] and (entry[1] != (65535, 65535, 65535) or following[0] - entry[0] > 0.15)]


def error(kelvin):
    """How far the shares of green and blue, of red, are from the temperature's white point; by the levels of a dark grey,
    since KWin 6.7 keeps the luminance of all that it can and so cuts off red in bright ones."""
    expected = white_point(kelvin)
    greys = [levels[min(index for index in levels if index > 0)] for levels in hardware.history[-1][1].values()]
    return max((abs(level / grey[0] - share) for grey in greys for level, share in zip(grey, expected)), default=1)


def rested(seconds=0.8):
    """The moment of the last change, once there has been none for that long."""
    wait_for(lambda: time.monotonic() - hardware.history[-1][0] > seconds, 15)
    return hardware.history[-1][0]


def ramp(kelvin):
    asked = set_temperature(kelvin)
    wait_for(lambda: settings() != untouched and hardware.history[-1][0] > asked, 5)
    rested()
    times = [moment for moment, _ in whites_since(asked)]
    row(f"{kelvin} K: length of the ramp on the screen", times[-1] - times[0] + 2 / len(times), "s", 2.1)
    row(f"{kelvin} K: off by", error(kelvin), "of 1", 0.023)


def back_since(moment, what, reach=None):
    row(f"{what}: settings back after",
        1000 * (time.monotonic() - moment) if wait_for(lambda: settings() == untouched, 3) else None, "ms", reach)
    wait_for(lambda: hardware.history[-1][0] > moment, 5)
    rested()
    row(f"{what}: screen back after", whites_since(moment)[-1][0] - moment if hardware.is_neutral() else None, "s", 2.1)
    row(f"{what}: nothing left borrowed", content(STATE) == b"")


def start():
    application = Application(WAYLAND_DISPLAY=display)
    time.sleep(0.5)
    return application


def tinted():
    application = start()
    set_temperature(3400)
    wait_for(lambda: b"Constant" in content(KWINRC), 10)
    time.sleep(1)
    rested()
    return application


hardware = Hardware(2)
plug(1, False)
session = Session(session_script)
display = session.wayland_display()
wait_for(lambda: night_light("available") == "true", 40)
announcements = Announcements()
time.sleep(3)
hardware.start()
version = subprocess.run(["kwin_wayland", "--version"], capture_output=True, text=True).stdout.strip()
print(f"\n{version}\n\n| what | measured | reach |\n|---|---|---|", flush=True)
with open(KWINRC, "a", encoding="utf8") as file:
    file.write("\n[NightColor]\nNightTemperature=4100\r\n\n[Of somebody else]\nKey[de]=Wert\n")
subprocess.run(["chown", "lab:lab", KWINRC])
untouched, original = settings(), content(KWINRC)

application = start()
for kelvin in (2700, 3400, 2000, 4500, 5500, 6000):
    ramp(kelvin)
tool("set", "6040")
row("40 K more: arrived after", (lambda start: time.monotonic() - start if wait_for(
    lambda: night_light("currentTemperature") == re.search(rb"NightTemperature=(\d+)", content(KWINRC)).group(1).decode()
    and time.monotonic() - start > 2, 9) else None)(time.monotonic()), "s", 6)
set_temperature(3400)
rested()
back_since(set_temperature(6500), "neutral")
row("neutral: kwinrc as before, byte for byte", content(KWINRC) == original)

set_temperature(3400)
time.sleep(4)
told = len(announcements.changes)
begun = time.monotonic()
for i in range(30):
    tool("set", str(3400 + 80 * i))
drag = time.monotonic() - begun
tool("set", "2700")
time.sleep(1.5)
rested(1.2)
row("drag: seconds", drag)
row("drag: requests a second", (len(announcements.changes) - told - 1) / (announcements.changes[-1] - begun), "", 1.1)
row("drag: off the last target by", error(2700), "of 1", 0.023)

back_since(application.quit(), "quit")
for number in (signal.SIGTERM, signal.SIGKILL):
    back_since(tinted().end(number), number.name, 100)

application = tinted()
guardian = subprocess.run(["pgrep", "-x", "AmbertideGuardi"], capture_output=True, text=True).stdout.split()
subprocess.run(["kill", "-KILL", str(application.process.pid), *guardian])
application.process.wait()
time.sleep(1)
row("power cut: settings still borrowed", b"Constant" in content(KWINRC) and content(STATE) != b"")
seen = []
watcher = threading.Thread(target=lambda: seen.append(wait_for(lambda: settings() == untouched, 20)))
watcher.start()
application = start()
watcher.join()
row("power cut: settings back at the next start", seen == [True])
wait_for(lambda: settings() != untouched, 5)
application.quit()
row("power cut: settings back after that one quits", bool(wait_for(lambda: settings() == untouched, 5)))

application = tinted()
output("kwriteconfig6", "--file", "kwinrc", "--group", "NightColor", "--key", "NightTemperature",
                       "--notify", "5000")
time.sleep(1)
told = len(announcements.changes)
theirs = content(KWINRC)
application.quit()
row("changed by the user: left alone", content(KWINRC) == theirs and len(announcements.changes) == told and b"5000" in theirs)
row("changed by the user: nothing left borrowed", content(STATE) == b"")
with open(KWINRC, "wb") as file:
    file.write(original)
output("busctl", "--user", "emit", "/kwinrc", "org.kde.kconfig.notify", "ConfigChanged", "a{saay}", "1",
                       "NightColor", "1", "6", *"65 99 116 105 118 101".split())
time.sleep(3)

application = tinted()
plug(1, True)
row("second output plugged in: tinted", bool(wait_for(lambda: len(hardware.whites()) == 2 and error(3400) < 0.023, 10)))
set_temperature(2700)
time.sleep(1)
plug(1, False)
time.sleep(1)
plug(1, True)
row("unplugged and plugged in during a ramp: tinted",
    bool(wait_for(lambda: len(hardware.whites()) == 2 and error(2700) < 0.023, 10)))
application.quit()

lost, slowest = 0, 0
for _ in range(kills):
    application = start()
    set_temperature(random.choice((2700, 3400, 4500)))
    time.sleep(random.random() * 3)
    moment = application.end(signal.SIGKILL)
    if wait_for(lambda: settings() == untouched and content(STATE) == b"", 3):
        slowest = max(slowest, time.monotonic() - moment)
    else:
        lost += 1
if kills:
    row(f"{kills} SIGKILLs at random moments: not given back", lost, "", 0)
    row("slowest of them", 1000 * slowest, "ms", 100)
    row("screen neutral after them", bool(wait_for(hardware.is_neutral, 6)))
session.stop()
