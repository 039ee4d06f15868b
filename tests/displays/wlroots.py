"""wlroots.py sway|labwc|wayfire|Hyprland [outputs [kills]]: the job for compositors with wlr-gamma-control."""
import random
import signal
import subprocess
import sys
import time

from machine import Application, Hardware, Session, as_user, plug, row, set_temperature, tool, wait_for

compositor = sys.argv[1]
outputs = int(sys.argv[2]) if len(sys.argv) > 2 else 1
kills = int(sys.argv[3]) if len(sys.argv) > 3 else 0

SETTINGS = {
    "sway": (".config/sway/config", "output * bg #ffffff solid_color\\nxwayland disable\\n"),
    "labwc": (".config/labwc/rc.xml", "<labwc_config/>\\n"),
    "wayfire": (".config/wayfire.ini", "[core]\\nplugins =\\nxwayland=false\\n"),
    "Hyprland": (".config/hypr/hyprland.conf", "monitor=,preferred,auto,1\\nanimations {\\n enabled = false\\n}\\n"),
}
path, content = SETTINGS[compositor]
session_script = f"""export XDG_SESSION_TYPE=wayland LIBGL_ALWAYS_SOFTWARE=1
{'export AQ_NO_MODIFIERS=1' if compositor == 'Hyprland' else
 'export WLR_RENDERER=pixman WLR_DRM_NO_MODIFIERS=1 WLR_LIBINPUT_NO_DEVICES=1'}
mkdir -p ~/$(dirname {path}); printf '{content}' > ~/{path}
exec {compositor} {'-c ~/' + path if compositor == 'Hyprland' else ''}
"""

hardware = Hardware(outputs)
subprocess.run("chmod 666 /dev/udmabuf", shell=True)
session = Session(session_script)
display = session.wayland_display()
time.sleep(5)
hardware.start()
as_user("swaybg", "-c", "#ffffff", environment={"WAYLAND_DISPLAY": display}, stderr=subprocess.DEVNULL)
wait_for(lambda: len(hardware.whites()) == outputs, 20)
version = subprocess.run([compositor, "--version"], capture_output=True, text=True).stdout.split("\n")[0]
print(f"\n{compositor}: {version},"
      f" {len(hardware.whites())} outputs\n\n| what | measured | reach |\n|---|---|---|", flush=True)


def start(**environment):
    return Application(WAYLAND_DISPLAY=display, **environment)


def tint(kelvin):
    set_temperature(kelvin)
    row(f"shows {kelvin} K, levels off by", wait_for(lambda: hardware.shows(kelvin), 10) and
        round(hardware.worst_error(kelvin), 2), "of 65535", 1)


def ramp_from_neutral(kelvin):
    """By the machine's own clock, which is coarse: how long the ramp's sleeps take without anything between them."""
    begin = time.monotonic()
    for _ in range(60):
        time.sleep(1 / 30)
    sleeps = time.monotonic() - begin
    asked = set_temperature(kelvin)
    hardware.shows_since(asked, kelvin)
    times = [moment for moment, _ in hardware.since(asked)] or [asked]
    row("tables of a ramp from neutral that were seen", len(times))
    # The first is held for 0.2 s before the steps begin; the last comes a step before the end.
    row("length of its 60 steps", times[-1] - times[0] - 0.2 + sleeps / 60, "s")
    row("the same, in times of 60 sleeps of a thirtieth of a second", (times[-1] - times[0] - 0.2) / sleeps * 60 / 59,
        "", 1.05)


def first_table(kelvin):
    """The machine starts programs slowly, and the tool is one."""
    begin = time.monotonic()
    tool("get")
    tool_time = time.monotonic() - begin
    asked = set_temperature(kelvin)
    wait_for(lambda: hardware.since(asked), 10)
    row(f"set {kelvin} to first new table, less the {1000 * tool_time:.0f} ms of the tool itself",
        1000 * (hardware.since(asked)[0][0] - asked - tool_time), "ms", 120)
    hardware.shows_since(asked, kelvin)
    row("levels off by", round(hardware.worst_error(kelvin), 2), "of 65535", 1)


def writes():
    return Application.LOG.read_text(errors="replace").count("set_gamma(")


application = start()
ramp_from_neutral(3400)
for kelvin in (4500, 2700, 5000):
    first_table(kelvin)

asked = set_temperature(6500)
row("neutral, ramp included", wait_for(hardware.is_neutral, 10) and hardware.neutral_since(asked), "ms")
for how in ("quit", signal.SIGTERM, signal.SIGKILL, signal.SIGKILL, signal.SIGKILL):
    if how != "quit" and application.process.poll() is not None:
        application = start(WAYLAND_DEBUG="client" if how == signal.SIGTERM else "")
    set_temperature(3400)
    wait_for(lambda: hardware.shows(3400), 10)
    time.sleep(0.3)
    if how == signal.SIGTERM:
        before, wakeups, changes = writes(), application.wakeups(), len(hardware.history)
        time.sleep(20)
        row("writes in 20 s of idle tint", writes() - before + len(hardware.history) - changes, "", 0)
        row("wake-ups a minute meanwhile", 3 * (application.wakeups() - wakeups))
    ended = application.quit() if how == "quit" else application.end(how)
    row(f"{getattr(how, 'name', how)} to neutral", hardware.neutral_since(ended), "ms", 500)

application = start(WAYLAND_DEBUG="client")
if outputs == 2:
    tint(4500)
    asked = set_temperature(3000)
    time.sleep(0.4)
    plug(1, False)
    wait_for(lambda: len(hardware.whites()) == 1, 10)
    time.sleep(0.5)
    plugged = time.monotonic()
    plug(1, True)
    both = wait_for(lambda: [moment for moment, crtcs in hardware.since(plugged) if len(crtcs) == 2], 30)
    tinted = wait_for(lambda: [moment for moment, crtcs in hardware.since(plugged)
                               if len(crtcs) == 2 and (65535, 65535, 65535) not in hardware.whites((0, crtcs))], 10)
    settled = hardware.shows_since(plugged, 3000)
    row("plugged again during a ramp: first picture to tinted",
        1000 * (tinted[0] - both[0]) if both and tinted else None, "ms", 250)
    row("both outputs show 3000 K", settled is not None and len(hardware.whites()) == 2)

application.end(signal.SIGKILL)
hardware.neutral_since(time.monotonic())
application = start(QT_QPA_PLATFORM="offscreen")  # the toolkit would end the application with the compositor
tint(3400)
session.stop()
time.sleep(1)
session.start()
back = wait_for(lambda: session.wayland_display() == display and time.monotonic(), 60)
settled = hardware.shows_since(back, 3400, 40, 9)  # the hardware may keep the old tables for a while
row("compositor restarted: its socket to tinted", settled and settled / 1000, "s")
row("said to be lost and to be back", all(text in Application.LOG.read_text(errors="replace")
                                         for text in (f"compositor {display} is lost", f"{display} can be reached")))
application.end(signal.SIGKILL)
time.sleep(1)

delays, tinted = [], 0
for _ in range(kills):
    application = start()
    set_temperature(random.choice((2000, 3400, 5000)))
    time.sleep(random.uniform(0, 3.5))
    tinted += not hardware.is_neutral()
    delays.append(hardware.neutral_since(application.end(signal.SIGKILL)))
if kills:
    row(f"SIGKILL at {kills} random moments: restored", sum(delay is not None for delay in delays))
    row("of these tinted at that moment", tinted)
    row("the slowest", max((delay for delay in delays if delay is not None), default=None), "ms", 500)
session.stop()
