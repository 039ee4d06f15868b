"""What the jobs inside the lab's machine share: the session, what the display hardware shows, the application."""
import math
import os
import pathlib
import pwd
import re
import subprocess
import threading
import time

SHARE = pathlib.Path("/vmshare")
USER = pwd.getpwnam("lab")
PROGRAMS = pathlib.Path("/opt/Ambertide.app/Contents/MacOS")
RUNTIME = pathlib.Path(f"/run/user/{USER.pw_uid}")
CARD = pathlib.Path("/sys/kernel/config/vkms/lab")
NEUTRAL = (65535, 65535, 65535)


def wait_for(condition, seconds=30):
    """Waits until the condition returns something true. Returns that, or the last value when the time is over."""
    end = time.monotonic() + seconds
    while not (value := condition()) and time.monotonic() < end:
        time.sleep(0.002)
    return value


def row(what, value, unit="", reach=None):
    """Prints a row: a number and the most that it may be, or whether something is true."""
    missed = value is None or value is False or (reach is not None and value > reach)
    text = "yes" if value is True else "no" if value is False else "never" if value is None else f"{value:.4g} {unit}"
    print(f"| {what} | {text.strip()} | {'' if reach is None else f'{reach} {unit}'.strip()} |"
          + (" MISSED" if missed else ""), flush=True)


def plug(output, is_plugged):
    (CARD / f"connectors/k{output}/status").write_text("1" if is_plugged else "2")


class Hardware:
    """Every change of what the CRTCs do to colours, as it happens."""

    TOLERANCE, UNIT = 1, "of 65535"  # of the errors below
    BARE = {255: NEUTRAL}  # of a CRTC without a table
    MISS = 0.15  # seconds: a table that seems gone may only have been read while it was replaced, and is back by then

    def __init__(self, outputs):
        subprocess.run(["sh", SHARE / "vkms-many.sh", str(outputs)], check=True)
        self.history = []  # (seconds, {crtc: levels of its tables}), oldest first
        self.log = open(SHARE / "hardware.log", "w", encoding="utf8")

    def start(self):
        # It polls, so it runs at low priority to leave the compositor its time.
        reader = subprocess.Popen(["nice", "-n", "15", "kmsdump", "-w", "100000"], stdout=subprocess.PIPE, text=True)
        threading.Thread(target=lambda: [self._note(line) for line in reader.stdout], daemon=True).start()
        plugged = sum(file.read_text().strip() == "1" for file in CARD.glob("connectors/*/status"))
        wait_for(lambda: self.history and len(self.whites()) == plugged, 20)

    def _note(self, line):
        seconds, state = line.split(" ", 1)
        crtcs = {}
        for name, text in re.findall(r"crtc(\d+) (.*?); ", state):
            if "=off" in text:
                continue
            levels = {int(i): (int(r), int(g), int(b)) for i, r, g, b in re.findall(r"(\d+):(\d+),(\d+),(\d+)", text)}
            matrix = re.search(r"ctm\[(\S+) \S+ \S+ / \S+ (\S+) \S+ / \S+ \S+ (\S+)\]", text)
            factors = [float(factor) for factor in matrix.groups()] if matrix else (1, 1, 1)
            levels = levels or self.BARE
            crtcs[name] = {i: tuple(round(c * f) for c, f in zip(level, factors)) for i, level in levels.items()}
        if float(seconds) - (self.history or [(0,)])[-1][0] < self.MISS and \
                any(crtcs.get(name, self.BARE) != self.BARE for name in self._lost(self.history)):
            self.history.pop()
        if not self.history or self.history[-1][1] != crtcs:
            self.history.append((float(seconds), crtcs))
            print(seconds, {name: levels[max(levels)] for name, levels in crtcs.items()}, file=self.log, flush=True)

    def _lost(self, entries):
        """The CRTCs that had a table up to the last reading, in which it is missing."""
        before, last = [crtcs for _, crtcs in entries[-2:]] if len(entries) > 1 else ({}, {})
        return [name for name, levels in last.items() if levels == self.BARE != before.get(name, self.BARE)]

    def _sure(self, entries):
        """The entries, without the last one while it may still turn out to be a miss."""
        return entries[:-1] if self._lost(entries) and time.monotonic() - entries[-1][0] < self.MISS else entries

    def since(self, start):
        return [entry for entry in self._sure(list(self.history)) if entry[0] >= start]

    def newest(self):
        return self._sure(self.history[-2:])[-1]

    def rested(self, quiet=0.8):
        """Waits until nothing has changed for `quiet` seconds, counted from now; returns the newest entry."""
        start = time.monotonic()
        wait_for(lambda: time.monotonic() - max(start, self.history[-1][0]) > quiet, 30)
        return self.history[-1]

    def whites(self, entry=None):
        """The white point of each CRTC that shows a picture."""
        return [levels[max(levels)] for levels in (entry or self.newest())[1].values()]

    def is_neutral(self, entry=None):
        return set(self.whites(entry)) == {NEUTRAL}

    def settled(self, start, condition, seconds=10, for_seconds=0.3):
        """Milliseconds from `start` until the condition held for good; None when it does not come to that in time."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            wait_for(lambda: condition(self.newest()), end - time.monotonic())
            quiet = self.history[-1]
            time.sleep(for_seconds)
            if self.history[-1] == quiet and condition(quiet):
                held = list(self.history)
                while len(held) > 1 and condition(held[-2]):
                    held.pop()
                return max(0.0, 1000 * (held[-1][0] - start))
        return None

    def worst_error(self, kelvin, entry=None):
        """How far a level of any CRTC is at most from the temperature's straight line, at the indices that are read."""
        white = white_point(kelvin)
        return max((abs(level - factor * index / max(levels) * 65535)
                    for levels in (entry or self.newest())[1].values()
                    for index, triple in levels.items() for level, factor in zip(triple, white)), default=65535)

    def shows(self, kelvin, entry=None):
        return self.worst_error(kelvin, entry) <= self.TOLERANCE

    def shows_since(self, start, kelvin, seconds=10, for_seconds=0.3):
        return self.settled(start, lambda entry: self.shows(kelvin, entry), seconds, for_seconds)


def differs(one, other):
    """The largest difference between two states of the hardware."""
    if one.keys() != other.keys():
        return 65535.0
    return float(max(abs(a - b) for crtc in one for i in one[crtc].keys() & other[crtc].keys()
                     for a, b in zip(one[crtc][i], other[crtc][i])))


def white_point(kelvin):
    x = kelvin / 100
    return (1.0, math.log(x) * 0.3900815787690196 - 0.631841443, math.log(x - 10) * 0.543206789110196 - 1.19625408914)


def as_user(*command, environment=None, **options):
    """Starts a process as the session's user."""
    variables = {"PATH": os.environ["PATH"], "HOME": USER.pw_dir, "LC_ALL": "C.UTF-8", "XDG_RUNTIME_DIR": RUNTIME,
                 "DBUS_SESSION_BUS_ADDRESS": f"unix:path={RUNTIME}/bus", "LD_LIBRARY_PATH": SHARE / "lib",
                 **(environment or {})}
    return subprocess.Popen(command, user=USER.pw_uid, group=USER.pw_gid, extra_groups=[], cwd="/", env=variables,
                            **options)


class Session:
    """A seat's session that runs one compositor, by a shell script."""

    def __init__(self, script):
        (SHARE / "session-job.sh").write_text(script)
        self.start()

    def start(self):
        for file in RUNTIME.glob("wayland-*"):
            file.unlink()
        subprocess.run(["systemctl", "restart", "labsession.service"], check=True)

    @staticmethod
    def stop():
        subprocess.run(["systemctl", "stop", "labsession.service"])

    @staticmethod
    def wayland_display():
        found = wait_for(lambda: [f.name for f in RUNTIME.glob("wayland-?")] if RUNTIME.exists() else None, 60)
        return found[0] if found else None


class Application:
    """One run of the application as the session's user."""

    LOG = SHARE / "application.log"

    def __init__(self, **environment):
        with self.LOG.open("a") as log:
            # Otherwise the panel would open some seconds later, since nothing here shows tray icons.
            self.process = as_user(PROGRAMS / "Ambertide", "--at-login", environment=environment, stdout=log,
                                   stderr=subprocess.STDOUT)
        if not wait_for(lambda: tool("get").strip().isdigit(), 60):
            raise RuntimeError("the application does not come up")

    def end(self, signal):
        """Sends the signal, waits for the end, and returns the moment when it was sent."""
        moment = time.monotonic()
        self.process.send_signal(signal)
        self.process.wait()
        return moment

    def quit(self):
        moment = ask("quit")
        self.process.wait()
        return moment

    def wakeups(self):
        """Wake-ups of all its threads so far."""
        texts = [(task / "status").read_text() for task in pathlib.Path(f"/proc/{self.process.pid}/task").iterdir()]
        return sum(int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", text, re.M).group(1)) for text in texts)


def tool(*arguments):
    return as_user(PROGRAMS / "AmbertideCLI", *arguments, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                   text=True).communicate()[0]


ASK = """import sys
from gi.repository import Gio, GLib
bus, path = Gio.bus_get_sync(Gio.BusType.SESSION), "/me/tovanu/Ambertide"
for line in sys.stdin:
    if line == "quit\\n":
        bus.call("me.tovanu.Ambertide", path, "org.freedesktop.Application", "ActivateAction",
                 GLib.Variant("(sava{sv})", ("quit", [], {})), None, Gio.DBusCallFlags.NONE, -1, None, None)
    else:
        bus.emit_signal(None, path, "me.tovanu.Ambertide.DistributedNotificationCenter", "Posted", GLib.Variant(
            "(sa{sv})", ("Ambertide.UpdateTemperature", {"temperature": GLib.Variant("i", int(line))})))
    bus.flush_sync()
    print(flush=True)
"""
asker = None  # that process


def ask(what):
    """Asks through a process that runs already, as programs start slowly in the machine. Returns when it was asked."""
    global asker
    asker = asker or as_user("python3", "-c", ASK, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    moment = time.monotonic()
    print(what, file=asker.stdin, flush=True)
    asker.stdout.readline()
    return moment


def set_temperature(kelvin):
    """As the tool asks for it."""
    return ask(kelvin)
