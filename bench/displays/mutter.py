"""mutter.py <part>...: the job for GNOME. Parts: plain, idle, ends, plugging, profiles, nights, kills:<number>."""
import pathlib
import signal
import struct
import subprocess
import sys
import time

from machine import as_user, row, set_temperature, wait_for
from measures import Job

PROFILE = pathlib.Path("/usr/share/color/icc/curved.icc")
SETTINGS = """import sys; from gi.repository import Gio
settings = Gio.Settings.new("org.gnome.settings-daemon.plugins.color")
settings.set_boolean("night-light-schedule-automatic", False)
settings.set_double("night-light-schedule-from", 0.0)
settings.set_double("night-light-schedule-to", 24.0)
settings.set_uint("night-light-temperature", int(sys.argv[1]) or 6500)
settings.set_boolean("night-light-enabled", sys.argv[1] != "0")
Gio.Settings.sync()"""


def night_light(kelvin):
    """Sets Night Light to a temperature, to which the settings daemon makes a ramp of its own; 0 switches it off."""
    as_user("python3", "-c", SETTINGS, str(kelvin)).wait()


def write_profile():
    """Writes a display profile of ICC version 2, with a calibration curve for each channel."""
    def fixed(*values):
        return b"".join(struct.pack(">i", round(value * 65536)) for value in values)
    tags = [(b"desc", b"desc\0\0\0\0" + struct.pack(">I", 4) + b"lab\0" + bytes(78)), (b"cprt", b"text\0\0\0\0none\0"),
            (b"wtpt", b"XYZ \0\0\0\0" + fixed(.95045, 1, 1.08905)),
            (b"rXYZ", b"XYZ \0\0\0\0" + fixed(.43607, .22249, .01392)),
            (b"gXYZ", b"XYZ \0\0\0\0" + fixed(.38515, .71687, .09708)),
            (b"bXYZ", b"XYZ \0\0\0\0" + fixed(.14307, .06061, .7141))]
    tags += [(name, b"curv\0\0\0\0" + struct.pack(">IH", 1, 563)) for name in (b"rTRC", b"gTRC", b"bTRC")]
    levels = [round(65535 * top * (i / 255) ** 1.2) for top in (1, .95, .9) for i in range(256)]
    tags.append((b"vcgt", b"vcgt\0\0\0\0" + struct.pack(">IHHH768H", 0, 3, 256, 2, *levels)))
    table, data, start = struct.pack(">I", len(tags)), b"", 132 + 12 * len(tags)
    for name, content in tags:
        table += struct.pack(">4sII", name, start + len(data), len(content))
        data += content + bytes(-len(content) % 4)
    header = struct.pack(">I4sI4s4s4s12s4s28s12s", start + len(data), b"lcms", 0x02400000, b"mntr", b"RGB ", b"XYZ ",
                         struct.pack(">6H", 2026, 1, 1, 0, 0, 0), b"acsp", b"", fixed(.9642, 1, .8249))
    PROFILE.parent.mkdir(parents=True, exist_ok=True)
    PROFILE.write_bytes(header.ljust(128, b"\0") + table + data)


def colormgr(*arguments):
    printed = subprocess.run(["colormgr", *arguments], capture_output=True, text=True).stdout
    return [line.split(":", 1)[1].strip() for line in printed.splitlines() if line.startswith("Object Path")]


def assign_profile():
    profile = wait_for(lambda: colormgr("find-profile-by-filename", str(PROFILE)), 10)[0]
    for device in colormgr("get-devices"):
        colormgr("device-add-profile", device, profile)
        colormgr("device-make-profile-default", device, profile)


class Mutter(Job):
    FIRST_TABLE = 200

    def shows_curve(self):
        return all(abs(white[2] - .9 * 65535) < 2 for white in self.hardware.whites())

    def without(self, kelvin, start):
        """The longest time since `start`, in milliseconds, for which the hardware showed something else."""
        longest, since = 0.0, None
        for entry in self.hardware.since(start):
            if not self.hardware.shows(kelvin, entry):
                since = since or entry[0]
            elif since:
                longest, since = max(longest, entry[0] - since), None
        return 1000 * longest

    def profiles(self):
        application = self.start()
        self.tint(3000)
        assigned = time.monotonic()
        assign_profile()
        self.hardware.rested(2.5)
        row("profile assigned: shows 3000 K", self.hardware.shows(3000))
        row("longest without it", self.without(3000, assigned), "ms", 250)
        set_temperature(6500)
        row("curve shown at neutral", wait_for(self.shows_curve, 10))
        application.quit()
        self.ends("calibrated")

    def nights(self):
        assign_profile()
        night_light(4000)
        time.sleep(3)
        row("Night Light alone: blue at white", self.hardware.whites(self.hardware.rested(5))[0][2])
        self.ends("Night Light, calibrated")
        application = self.start()
        self.tint(3000)
        changed = time.monotonic()
        night_light(3500)
        time.sleep(8)
        row("Night Light's own ramp: still shows 3000 K", self.hardware.shows(3000))
        row("tables of its own seen", sum(not self.hardware.shows(3000, entry)
                                          for entry in self.hardware.since(changed)))
        row("longest without 3000 K", self.without(3000, changed), "ms", 250)
        night_light(0)
        time.sleep(8)
        row("Night Light off: still shows 3000 K", self.hardware.shows(3000))
        set_temperature(6500)
        row("then neutral shows the curve", wait_for(self.shows_curve, 10))
        application.end(signal.SIGKILL)


write_profile()
rules = pathlib.Path("/etc/polkit-1/rules.d/1.rules")
rules.parent.mkdir(parents=True, exist_ok=True)
rules.write_text("polkit.addRule(function() { return polkit.Result.YES; });")
subprocess.run(["systemctl", "start", "polkit", "colord"])
job = Mutter("""export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=GNOME LIBGL_ALWAYS_SOFTWARE=1 MUTTER_DEBUG=color
exec mutter --wayland --no-x11
""", ["mutter", "--version"])
as_user("/usr/libexec/gsd-color", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
time.sleep(3)
job.run(sys.argv[1:])
