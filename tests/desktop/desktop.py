"""A desktop of the test's own: X server, buses, window manager, panel and accessibility, with Ambertide on it.

One a process, since the accessibility library connects once. Everything is on free numbers and in a temporary folder,
and ends with the process. Times out with an exception; waits poll a condition, never a fixed time.
"""

import glob
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

from gi.repository import GLib

FILES = pathlib.Path(__file__).resolve().parent / "panels"
# Each panel's arguments, and where it shows its only icon.
PANELS = {"xfce4-panel": (["--disable-wm-check"], (1266, 15)),
          "lxqt-panel": (["-c", "lxqt-panel.conf"], (1265, 785)),
          "tint2": (["-c", "tint2rc"], (1265, 784))}
NEUTRAL = (65535, 65535, 65535)
AT_3400 = (65535, 48740, 34739)
AT_2700 = (65535, 42847, 22463)
BUS_CONFIGURATION = """<busconfig>
<type>session</type><listen>unix:path={0}/bus</listen><servicedir>{0}/services</servicedir>
<policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy></busconfig>
"""


def wait_until(condition, what, seconds=20):
    """Returns the first true value of `condition`."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        try:
            value = condition()
        except (GLib.Error, subprocess.CalledProcessError):
            value = None  # an accessible element went while it was looked at, or the application is busy
        if value:
            return value
        time.sleep(0.02)
    raise TimeoutError(what)


class Desktop:
    """Starts all but Ambertide."""

    def __init__(self, build, panel="xfce4-panel", scale=1, gtk_theme="Adwaita"):
        self.build = pathlib.Path(build).resolve()
        self.bundle = self.build / "Ambertide.app"
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="ambertide-desktop-"))
        self._processes = []
        for variable in list(os.environ):
            if variable.startswith(("DESKTOP_", "QT_", "WAYLAND_", "XDG_")):
                del os.environ[variable]
        os.environ.update(HOME=str(self.home), XDG_RUNTIME_DIR=str(self.home), LC_ALL="C.UTF-8",
                          QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_SCALE_FACTOR=str(scale), GDK_SCALE=str(scale),
                          GTK_THEME=gtk_theme)
        self._start_server(f"{1280 * scale}x{800 * scale}x24")
        self._start_buses()
        self.start("openbox", "--config-file", str(FILES / "openbox.xml"))
        wait_until(lambda: self.xdotool("get_num_desktops"), "no window manager answers")
        arguments, (x, y) = PANELS[panel]
        self._start_panel(panel, arguments)
        self.icon = x * scale, y * scale
        self.application = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self._processes):
            process.kill()
            process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def start(self, *command, output=subprocess.DEVNULL, **options):
        ends_with_this = "setpriv", "--pdeathsig", "KILL"
        process = subprocess.Popen([*ends_with_this, *command], stdout=output, stderr=output, **options)
        self._processes.append(process)
        return process

    def _start_server(self, size):
        reading, writing = os.pipe()
        self.start("Xvfb", "-displayfd", str(writing), "-noreset", "-nolisten", "tcp", "-screen", "0", size,
                   pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as numbers:
            os.environ["DISPLAY"] = ":" + numbers.readline().strip()

    def _start_buses(self):
        services = self.home / "services"
        services.mkdir()
        for name in "org.a11y.Bus", "org.xfce.Xfconf":
            shutil.copy(f"/usr/share/dbus-1/services/{name}.service", services)
        (self.home / "bus.conf").write_text(BUS_CONFIGURATION.format(self.home))
        self.start("dbus-daemon", f"--config-file={self.home}/bus.conf", "--nofork")
        wait_until((self.home / "bus").exists, "there is no bus")
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.home}/bus"
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={self.home}/no-system-bus"

    def _start_panel(self, panel, arguments):
        folder = self.home / ".config/xfce4/xfconf/xfce-perchannel-xml"
        folder.mkdir(parents=True)
        shutil.copy(FILES / "xfce4-panel.xml", folder)
        shutil.copytree(FILES, self.home, dirs_exist_ok=True)  # LXQt's writes to its file
        for attempt in 1, 2:  # Xfce's now and then comes up without a window
            process = self.start(panel, *arguments, cwd=self.home)
            try:
                wait_until(lambda: self.xdotool("search", "--onlyvisible", "--class", panel), f"no window of {panel}")
                return
            except TimeoutError:
                if attempt == 2:
                    raise
                process.kill()
                process.wait()

    # The application

    def start_application(self, *wrapper, **environment):
        """Returns when it takes requests. The environment is added to everybody's; a wrapper is a command that
        runs the one behind it."""
        self.application = self.start(*wrapper, str(self.bundle / "Contents/MacOS/Ambertide"),
                                      output=open(self.home / "application.log", "wb"),
                                      env={**os.environ, **environment})
        wait_until(lambda: "Registering for CLI" in self.log(), "the application takes no requests")

    def clock(self, time):
        """The environment of an application whose clock goes on from this time, and from later ones at later calls."""
        library, = glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")
        file = self.home / "clock"
        (self.home / "clock.new").write_text(time)
        (self.home / "clock.new").rename(file)
        return {"LD_PRELOAD": library, "FAKETIME_TIMESTAMP_FILE": str(file), "FAKETIME_NO_CACHE": "1",
                "FAKETIME_DONT_FAKE_MONOTONIC": "1", "TZ": "UTC"}

    def wait_for_icon(self):
        """Returns once something is drawn where the panel shows the only icon."""
        x, y = self.icon
        region = self.home / "icon.png"

        def is_drawn():
            self.screenshot(region, (x - 6, y - 6, 12, 12))
            return int(subprocess.check_output(["identify", "-format", "%k", region])) > 3  # colours

        wait_until(is_drawn, "there is no icon")

    def open_panel(self):
        """Clicks again while the click counts as part of the one that has closed the panel."""
        import screen_reader
        self.wait_for_icon()
        clicked = 0

        def is_open():
            nonlocal clicked
            if not screen_reader.elements("slider", "Color temperature") and time.monotonic() > clicked + 2:
                self.click(*self.icon)
                clicked = time.monotonic()
            return screen_reader.elements("slider", "Color temperature")

        wait_until(is_open, "a click on the icon opens no panel")

    def log(self):
        return (self.home / "application.log").read_text()

    def tool(self, *arguments):
        return subprocess.check_output([self.bundle / "Contents/MacOS/AmbertideCLI", *arguments], text=True).strip()

    def call(self, method, *arguments):
        """A method of org.freedesktop.Application, with busctl's words for its arguments."""
        subprocess.run(["busctl", "--user", "call", "me.tovanu.Ambertide", "/me/tovanu/Ambertide",
                        "org.freedesktop.Application", method, *arguments], check=True, stdout=subprocess.DEVNULL)

    def show_settings(self):
        self.call("ActivateAction", "sava{sv}", "settings", "0", "0")

    def white_point(self):
        """Red, green and blue of the first display's last table entries, 0 to 65535."""
        shown = subprocess.check_output([self.build / "tools/read-gamma-table"], text=True)
        return tuple(int(channel) for channel in shown.splitlines()[0].split())

    # Keyboard, mouse and screen

    def xdotool(self, *arguments):
        found = subprocess.run(["xdotool", *(str(argument) for argument in arguments)], capture_output=True, text=True)
        return found.stdout.split()

    def click(self, x, y, button=1):
        self.xdotool("mousemove", round(x), round(y), "click", button)

    def drag(self, *path):
        """Presses at the first point and lets go at the last."""
        moves = [word for x, y in path for word in ("mousemove", round(x), round(y))]
        self.xdotool(*moves[:3], "mousedown", 1, *moves[3:], "mouseup", 1)

    def key(self, *keys):
        self.xdotool("key", "--clearmodifiers", *keys)

    def screenshot(self, path, region):
        subprocess.run(["import", "-silent", "-window", "root", "-crop", "{2}x{3}+{0}+{1}".format(*region), "+repage",
                        "-strip", "-define", "png:exclude-chunks=date,time", path], check=True)


def main(scenarios):
    """Runs the scenario that the command line names: <build folder> <scenario> [<panel>]."""
    build, name, *panel = sys.argv[1:]
    with Desktop(build, *panel) as desktop:
        try:
            scenarios[name](desktop)
        except BaseException:
            print(desktop.log() if desktop.application else "", file=sys.stderr)
            raise
