"""wlroots.py sway|labwc|wayfire|Hyprland [part...]: the job for compositors with wlr-gamma-control; two outputs. Parts:
plain, ends, plugging, restart, kills:<number>; all but the last where none are named."""
import signal
import subprocess
import sys
import time

from machine import Application, Hardware, Session, as_user, row, wait_for
from measures import Measures, run_parts

compositor = sys.argv[1]

SETTINGS = {
    "sway": (".config/sway/config", "output * bg #ffffff solid_color\nxwayland disable\n"),
    "labwc": (".config/labwc/rc.xml", "<labwc_config/>\n"),
    "wayfire": (".config/wayfire.ini", "[core]\nplugins =\nxwayland=false\n"),
    "Hyprland": (".config/hypr/hyprland.lua",
                 'hl.monitor({output = "", mode = "preferred", position = "auto", scale = 1})\n'
                 "hl.config({animations = {enabled = false}})\n"),
}
ENVIRONMENT = {"Hyprland": "AQ_NO_MODIFIERS=1", "wayfire": "WLR_RENDERER_ALLOW_SOFTWARE=1"}
path, content = SETTINGS[compositor]
session_script = f"""export XDG_SESSION_TYPE=wayland LIBGL_ALWAYS_SOFTWARE=1
export {ENVIRONMENT.get(compositor, 'WLR_RENDERER=pixman')} WLR_DRM_NO_MODIFIERS=1 WLR_LIBINPUT_NO_DEVICES=1
mkdir -p ~/$(dirname {path}); cat >~/{path} <<'END'
{content}END
exec {compositor} {'-c ~/' + path if compositor == 'Hyprland' else ''}
"""


def log():
    return Application.LOG.read_text(errors="replace")


hardware = Hardware(2)
subprocess.run("chmod 666 /dev/udmabuf", shell=True)
session = Session(session_script)
display = session.wayland_display()
time.sleep(5)
as_user("swaybg", "-c", "#ffffff", environment={"WAYLAND_DISPLAY": display}, stderr=subprocess.DEVNULL)
hardware.start(2)
measures = Measures(hardware, display, [compositor, "--version"])


def plain():
    application = measures.start()
    measures.ramp_from_neutral(3400)
    measures.first_tables(120)
    application.quit()
    application = measures.start(WAYLAND_DEBUG="client")
    measures.tint(3400)
    measures.idle(application, lambda: log().count("set_gamma("))
    application.quit()


def ends():
    measures.ends("plain", ["neutral", "quit", signal.SIGTERM, signal.SIGKILL, signal.SIGKILL, signal.SIGKILL])


def switch(is_there):
    """Aquamarine announces no output that is plugged in where the card has no GPU: there the compositor is told."""
    state = f"disabled = {str(not is_there).lower()}"
    rule = f'hl.monitor({{output = "Virtual-2", mode = "preferred", position = "auto", {state}}})'
    as_user("hyprctl", "-i", "0", "eval", rule, stdout=subprocess.DEVNULL).wait()


def plugging():
    measures.plugging(250, switch) if compositor == "Hyprland" else measures.plugging(250)


def restart():
    application = measures.start(QT_QPA_PLATFORM="offscreen")  # the toolkit would end the application with the compositor
    measures.tint(3400)
    session.stop()
    time.sleep(1)
    session.start()
    back = wait_for(lambda: session.wayland_display() == display and time.monotonic(), 60)
    settled = hardware.shows_since(back, 3400, 40, 9)  # the hardware may keep the old tables for a while
    row("compositor restarted: its socket to tinted", settled and settled / 1000, "s")
    row("said to be lost and to be back",
        all(text in log() for text in (f"compositor {display} is lost", f"{display} can be reached")))
    application.end(signal.SIGKILL)


def kills(count):
    measures.kills(count, lambda moment: hardware.settled(moment, hardware.is_neutral), 500)


run_parts({"plain": plain, "ends": ends, "plugging": plugging, "restart": restart, "kills": kills}, sys.argv[2:])
session.stop()
