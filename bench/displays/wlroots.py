"""wlroots.py sway|labwc|wayfire|Hyprland <part>...: the job for compositors with wlr-gamma-control. Parts: plain, idle,
ends, plugging, restart, kills:<number>."""
import signal
import subprocess
import sys
import time

from machine import Application, as_user, row, wait_for
from measures import Job

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


class Wlroots(Job):
    FIRST_TABLE = 120

    def idle(self):
        super().idle(lambda: log().count("set_gamma("), WAYLAND_DEBUG="client")

    def restart(self):
        application = self.start(QT_QPA_PLATFORM="offscreen")  # the toolkit's would end it with the compositor
        self.tint(3400)
        self.session.stop()
        time.sleep(1)
        self.session.start()
        back = wait_for(lambda: self.session.wayland_display() == self.display and time.monotonic(), 60)
        settled = self.hardware.shows_since(back, 3400, 40, 9)  # the hardware may keep the old tables for a while
        row("compositor restarted: its socket to tinted", settled and settled / 1000, "s")
        row("said to be lost and to be back",
            all(text in log() for text in (f"compositor {self.display} is lost", f"{self.display} can be reached")))
        application.end(signal.SIGKILL)


class Hyprland(Wlroots):
    @staticmethod
    def switch(is_there):
        """On a card without a GPU Aquamarine announces no output that is plugged in, so the compositor is told."""
        state = f"disabled = {str(not is_there).lower()}"
        rule = f'hl.monitor({{output = "Virtual-2", mode = "preferred", position = "auto", {state}}})'
        as_user("hyprctl", "-i", "0", "eval", rule, stdout=subprocess.DEVNULL).wait()


subprocess.run("chmod 666 /dev/udmabuf", shell=True)
job = (Hyprland if compositor == "Hyprland" else Wlroots)(session_script, [compositor, "--version"])
as_user("swaybg", "-c", "#ffffff", environment={"WAYLAND_DISPLAY": job.display}, stderr=subprocess.DEVNULL)
time.sleep(2)
job.run(sys.argv[2:])
