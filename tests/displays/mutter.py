"""mutter.py [part...]: the job for GNOME, with two outputs. Parts: plain, plugging, profiles, nights, kills; all but
the last where none are named."""
import pathlib
import random
import signal
import struct
import subprocess
import sys
import time

from machine import Application, Hardware, Session, as_user, plug, row, set_temperature, tool, wait_for

KILLS = 50
PROFILES = pathlib.Path("/usr/share/color/icc")
SETTINGS = """import sys; from gi.repository import Gio
settings = Gio.Settings.new("org.gnome.settings-daemon.plugins.color")
settings.set_boolean("night-light-schedule-automatic", False)
settings.set_double("night-light-schedule-from", 0.0)
settings.set_double("night-light-schedule-to", 24.0)
settings.set_uint("night-light-temperature", int(sys.argv[1]) or 6500)
settings.set_boolean("night-light-enabled", sys.argv[1] != "0")
Gio.Settings.sync()"""


def night_light(kelvin):
    """0 switches it off. It comes by a ramp of the settings daemon's own."""
    as_user("python3", "-c", SETTINGS, str(kelvin)).wait()


def write_profile(path, tops, exponent):
    """A display's profile of version 2 with curves that end at `tops`, or without any."""
    def fixed(*values):
        return b"".join(struct.pack(">i", round(value * 65536)) for value in values)
    tags = [(b"desc", b"desc\0\0\0\0" + struct.pack(">I", 4) + b"lab\0" + bytes(78)), (b"cprt", b"text\0\0\0\0none\0"),
            (b"wtpt", b"XYZ \0\0\0\0" + fixed(.95045, 1, 1.08905)),
            (b"rXYZ", b"XYZ \0\0\0\0" + fixed(.43607, .22249, .01392)),
            (b"gXYZ", b"XYZ \0\0\0\0" + fixed(.38515, .71687, .09708)),
            (b"bXYZ", b"XYZ \0\0\0\0" + fixed(.14307, .06061, .7141))]
    tags += [(name, b"curv\0\0\0\0" + struct.pack(">IH", 1, 563)) for name in (b"rTRC", b"gTRC", b"bTRC")]
    if tops:
        levels = [round(65535 * top * (i / 255) ** exponent) for top in tops for i in range(256)]
        tags.append((b"vcgt", b"vcgt\0\0\0\0" + struct.pack(">IHHH768H", 0, 3, 256, 2, *levels)))
    table, data, start = struct.pack(">I", len(tags)), b"", 132 + 12 * len(tags)
    for name, content in tags:
        table += struct.pack(">4sII", name, start + len(data), len(content))
        data += content + bytes(-len(content) % 4)
    header = struct.pack(">I4sI4s4s4s12s4s28s12s", start + len(data), b"lcms", 0x02400000, b"mntr", b"RGB ", b"XYZ ",
                         struct.pack(">6H", 2026, 1, 1, 0, 0, 0), b"acsp", b"", fixed(.9642, 1, .8249))
    path.write_bytes(header.ljust(128, b"\0") + table + data)


def colormgr(*arguments):
    printed = subprocess.run(["colormgr", *arguments], capture_output=True, text=True)
    found = [line.split(":", 1)[1].strip() for line in printed.stdout.splitlines() if line.startswith("Object Path")]
    return found


def assign(name):
    profile = wait_for(lambda: colormgr("find-profile-by-filename", str(PROFILES / name)), 10)[0]
    for device in colormgr("get-devices"):
        colormgr("device-add-profile", device, profile)
        colormgr("device-make-profile-default", device, profile)


def differs(one, other):
    """How far apart two states of the hardware are at most."""
    if one.keys() != other.keys():
        return 65535
    return float(max(abs(a - b) for crtc in one for i in one[crtc]
                     for a, b in zip(one[crtc][i], other[crtc].get(i, (-65536,) * 3))))


def settled(start, own):
    return hardware.settled(start, lambda entry: differs(entry[1], own) <= 1)


def shown(quiet=2.5):
    """What the hardware shows once nothing has changed for some seconds."""
    wait_for(lambda: time.monotonic() - hardware.history[-1][0] > quiet, 30)
    return hardware.history[-1][1]


def shows_curve():
    return all(abs(white[2] - .9 * 65535) < 2 for white in hardware.whites())


def longest_without(kelvin, start):
    """Milliseconds for which the hardware has shown something else at a time."""
    longest, since = 0.0, None
    for entry in hardware.since(start):
        if hardware.worst_error(kelvin, entry) > 1:
            since = since or entry[0]
        elif since:
            longest, since = max(longest, entry[0] - since), None
    return 1000 * longest


def start():
    return Application(WAYLAND_DISPLAY=display)


def sleeps():
    """What a ramp's sleeps take by the machine's own clock, which is coarse."""
    begin = time.monotonic()
    for _ in range(60):
        time.sleep(1 / 30)
    return time.monotonic() - begin


def tint(kelvin):
    set_temperature(kelvin)
    row(f"shows {kelvin} K, levels off by", wait_for(lambda: hardware.shows(kelvin), 10) and
        round(hardware.worst_error(kelvin), 2), "of 65535", 1)


def ramp_from_neutral(kelvin):
    bare = sleeps()
    asked = set_temperature(kelvin)
    hardware.shows_since(asked, kelvin)
    times = [moment for moment, _ in hardware.since(asked)]
    row("tables of a ramp from neutral that were seen", len(times))
    # The first is held for 0.2 s before the steps begin; the last comes a step before the end.
    row("length of its 60 steps", times[-1] - times[0] - 0.2 + bare / 60, "s")
    row("the same, in times of 60 sleeps of a thirtieth of a second",
        (times[-1] - times[0] - 0.2) / bare * 60 / 59, "", 1.05)


def first_table(kelvin):
    """The machine starts programs slowly, and the tool is one."""
    begin = time.monotonic()
    tool("get")
    tool_time = time.monotonic() - begin
    asked = set_temperature(kelvin)
    wait_for(lambda: hardware.since(asked), 10)
    row(f"set {kelvin} to first new table, less the {1000 * tool_time:.0f} ms of the tool itself",
        1000 * (hardware.since(asked)[0][0] - asked - tool_time), "ms", 200)
    hardware.shows_since(asked, kelvin)
    row("levels off by", round(hardware.worst_error(kelvin), 2), "of 65535", 1)


def ends(what, hows):
    """Each way to end gives back what was shown before."""
    own = shown()
    application = start()
    for how in hows:
        if application.process.poll() is not None:
            application = start()
        set_temperature(3400)
        wait_for(lambda: hardware.shows(3400), 10)
        time.sleep(0.3)
        if how == "neutral":
            asked = set_temperature(6500)
            row(f"{what}: neutral, ramp included", settled(asked, own), "ms")
            continue
        ended = application.quit() if how == "quit" else application.end(how)
        row(f"{what}: {getattr(how, 'name', how)} to restored", settled(ended, own), "ms", 500)
    row(f"{what}: restored levels off by", differs(shown(), own), "of 65535", 1)


PROFILES.mkdir(parents=True, exist_ok=True)
write_profile(PROFILES / "curved.icc", (1, .95, .9), 1.2)
write_profile(PROFILES / "plain.icc", None, 1)
rules = pathlib.Path("/etc/polkit-1/rules.d/1.rules")
rules.parent.mkdir(parents=True, exist_ok=True)
rules.write_text("polkit.addRule(function() { return polkit.Result.YES; });")
subprocess.run(["systemctl", "start", "polkit", "colord"])
hardware = Hardware(2)
session = Session("""export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=GNOME LIBGL_ALWAYS_SOFTWARE=1 MUTTER_DEBUG=color
exec mutter --wayland --no-x11
""")
display = session.wayland_display()
time.sleep(5)
hardware.start()
wait_for(lambda: len(hardware.whites()) == 2, 20)
as_user("/usr/libexec/gsd-color", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
time.sleep(3)
version = subprocess.run(["mutter", "--version"], capture_output=True, text=True).stdout.splitlines()[0]
print(f"\n{version}, {len(hardware.whites())} outputs\n\n| what | measured | reach |\n|---|---|---|", flush=True)

def plain():
    application = start()
    ramp_from_neutral(3400)
    for kelvin in (4500, 2700, 5000):
        first_table(kelvin)
    before, wakeups = len(hardware.history), application.wakeups()
    time.sleep(10)
    row("tables changed in 10 s of idle tint", len(hardware.history) - before, "", 0)
    row("wake-ups a second meanwhile", (application.wakeups() - wakeups) / 10)
    set_temperature(6500)
    row("neutral again", wait_for(hardware.is_neutral, 10))
    time.sleep(1)
    application.quit()
    ends("plain", ["neutral", "quit", signal.SIGTERM, signal.SIGKILL, signal.SIGKILL, signal.SIGKILL])


def plugging():
    application = start()
    tint(4500)
    asked = set_temperature(3000)
    time.sleep(0.4)
    plug(1, False)
    wait_for(lambda: len(hardware.whites()) == 1, 5)
    time.sleep(0.5)
    plugged = time.monotonic()
    plug(1, True)
    both = wait_for(lambda: [moment for moment, crtcs in hardware.since(plugged) if len(crtcs) == 2], 10)
    tinted = wait_for(lambda: [moment for moment, crtcs in hardware.since(plugged)
                               if len(crtcs) == 2 and (65535, 65535, 65535) not in hardware.whites((0, crtcs))], 10)
    row("plugged again during a ramp: first picture to tinted",
        bool(both and tinted) and 1000 * (tinted[0] - both[0]), "ms", 250)
    row("both outputs show 3000 K", wait_for(lambda: len(hardware.whites()) == 2 and hardware.shows(3000), 10))
    application.quit()


def profiles():
    application = start()
    tint(3000)
    assigned = time.monotonic()
    assign("curved.icc")
    shown()
    row("profile assigned: shows 3000 K", hardware.shows(3000))
    row("longest without it", longest_without(3000, assigned), "ms", 250)
    set_temperature(6500)
    row("curve shown at neutral", wait_for(shows_curve, 10))
    application.quit()
    ends("calibrated", ["neutral", "quit", signal.SIGTERM, signal.SIGKILL])


def nights():
    assign("curved.icc")
    night_light(4000)
    time.sleep(3)
    row("Night Light alone: blue at white", shown(5) and hardware.whites()[0][2])
    ends("Night Light, calibrated", ["neutral", "quit", signal.SIGTERM, signal.SIGKILL])
    application = start()
    tint(3000)
    changed = time.monotonic()
    night_light(3500)
    time.sleep(8)
    row("Night Light's own ramp: still shows 3000 K", hardware.shows(3000))
    row("tables of its own seen", sum(hardware.worst_error(3000, entry) > 1 for entry in hardware.since(changed)))
    row("longest without 3000 K", longest_without(3000, changed), "ms", 250)
    night_light(0)
    time.sleep(8)
    row("Night Light off: still shows 3000 K", hardware.shows(3000))
    set_temperature(6500)
    row("then neutral shows the curve", wait_for(shows_curve, 10))
    application.end(signal.SIGKILL)


def kills():
    delays = []
    own = shown()
    for _ in range(KILLS):
        application = start()
        set_temperature(random.choice((2000, 3400, 5000)))
        time.sleep(random.uniform(0, 3.5))
        delays.append(settled(application.end(signal.SIGKILL), own))
    row(f"SIGKILL at {KILLS} random moments: restored", sum(delay is not None for delay in delays))
    delays = sorted(delay for delay in delays if delay is not None)
    row("the middle one of them", delays[len(delays) // 2], "ms", 500)
    row("the slowest", delays[-1], "ms", 500)


for part in sys.argv[1:] or ["plain", "plugging", "profiles", "nights"]:
    {"plain": plain, "plugging": plugging, "profiles": profiles, "nights": nights, "kills": kills}[part]()
session.stop()
