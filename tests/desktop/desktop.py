"""A desktop of the test's own: X server, buses, window manager, panel and accessibility, with Ambertide on it.

One a process, since the accessibility library connects once. Everything is on free numbers and in a temporary folder,
and ends with the process. Times out with an exception; waits poll a condition, never a fixed time.
"""

import configparser
import ctypes
import glob
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from gi.repository import GLib

HERE = pathlib.Path(__file__).resolve().parent
PANELS = HERE / "panels"
NEUTRAL = (65535, 65535, 65535)
AT_3400 = (65535, 48740, 34739)
AT_2700 = (65535, 42847, 22463)
SERVICES = ("org.a11y.Bus.service", "org.xfce.Xfconf.service")
BUS_CONFIGURATION = """<busconfig><type>session</type><listen>unix:path={0}/bus</listen><servicedir>{0}/services</servicedir>
<policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy></busconfig>
"""


def wait_until(condition, what, seconds=20):
    """Returns the first true value of `condition`."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        try:
            value = condition()
        except GLib.Error:
            value = None  # an accessible element went while it was looked at
        if value:
            return value
        time.sleep(0.02)
    raise TimeoutError(what)


def _end_with_parent():
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)


class Desktop:
    """Starts all but Ambertide. `panel` is one of panels/."""

    def __init__(self, build, panel="xfce4-panel", scale=1, gtk_theme="Adwaita"):
        size = 1280 * scale, 800 * scale
        self.build = pathlib.Path(build).resolve()
        self.bundle = self.build / "Ambertide.app"
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="ambertide-desktop-"))
        self._processes = []
        for variable in ("WAYLAND_DISPLAY", "DESKTOP_STARTUP_ID", "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM"):
            os.environ.pop(variable, None)
        folders = {"XDG_CONFIG_HOME": "config", "XDG_RUNTIME_DIR": "run", "XDG_CACHE_HOME": "cache",
                   "XDG_DATA_HOME": "data"}
        for variable, name in folders.items():
            (self.home / name).mkdir(mode=0o700)
            os.environ[variable] = str(self.home / name)
        os.environ.update(HOME=str(self.home), LC_ALL="C.UTF-8", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
                          QT_SCALE_FACTOR=str(scale), GDK_SCALE=str(scale), GTK_THEME=gtk_theme)
        self._start_server(size)
        self._start_buses()
        self.start("openbox", "--config-file", str(PANELS / "openbox.xml"))
        wait_until(lambda: self.xdotool("get_num_desktops"), "no window manager answers")
        self._start_panel(panel)
        x, y = {"xfce4-panel": (1266, 15), "lxqt-panel": (1265, 785), "tint2": (1265, 784)}[panel]
        self.icon = x * scale, y * scale
        self.application = None

    def close(self):
        for process in reversed(self._processes):
            process.kill()
            process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def start(self, *command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        process = subprocess.Popen(command, preexec_fn=_end_with_parent, **options)
        self._processes.append(process)
        return process

    def _start_server(self, size):
        reading, writing = os.pipe()
        self.start("Xvfb", "-displayfd", str(writing), "-noreset", "-nolisten", "tcp", "-screen", "0",
                   f"{size[0]}x{size[1]}x24", pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as numbers:
            os.environ["DISPLAY"] = ":" + numbers.readline().strip()

    def _start_buses(self):
        services = self.home / "services"
        services.mkdir()
        for name in SERVICES:
            found = pathlib.Path("/usr/share/dbus-1/services") / name
            if found.exists():
                shutil.copy(found, services)
        configuration = self.home / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(self.home))
        bus = self.start("dbus-daemon", f"--config-file={configuration}", "--nofork", "--print-address=1",
                         stdout=subprocess.PIPE)
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={self.home}/no-system-bus"

    def _start_panel(self, panel):
        log = open(self.home / "panel.log", "wb")
        if panel == "xfce4-panel":
            folder = self.home / "config/xfce4/xfconf/xfce-perchannel-xml"
            folder.mkdir(parents=True)
            shutil.copy(PANELS / "xfce4-panel.xml", folder)
        arguments = {"xfce4-panel": ["--disable-wm-check"], "lxqt-panel": ["-c", str(PANELS / "lxqt-panel.conf")],
                     "tint2": ["-c", str(PANELS / "tint2rc")]}[panel]
        for attempt in (1, 2):  # Xfce's now and then comes up without a window
            process = self.start(panel, *arguments, stdout=log, stderr=log)
            try:
                wait_until(lambda: self.xdotool("search", "--onlyvisible", "--class", panel), f"{panel} shows no window")
                return
            except TimeoutError:
                said = (self.home / "panel.log").read_text(errors="replace")
                print(f"{panel} shows no window, status {process.poll()}: {said}", file=sys.stderr)
                process.kill()
                process.wait()
        raise TimeoutError(f"{panel} shows no window")

    # The application

    def start_application(self, *wrapper, **environment):
        """Returns when it takes requests. The environment is its own, on top of everybody's; a wrapper is a command that
        runs the one behind it."""
        log = open(self.home / "application.log", "ab")
        self.application = self.start(*wrapper, str(self.bundle / "Contents/MacOS/Ambertide"), stdout=log,
                                      stderr=subprocess.STDOUT, env={**os.environ, **environment})
        self.wait_for_line("Registering for CLI")
        return self.application

    def clock(self, time):
        """The environment of an application whose clock goes on from this time, and from later ones at later calls."""
        library, = glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")
        file = self.home / "clock"
        replacement = file.with_suffix(".new")
        replacement.write_text(time)
        replacement.rename(file)
        return {"LD_PRELOAD": library, "FAKETIME_TIMESTAMP_FILE": str(file), "FAKETIME_NO_CACHE": "1",
                "FAKETIME_DONT_FAKE_MONOTONIC": "1", "TZ": "UTC"}

    def wait_for_icon(self):
        """Returns once something is drawn where the panel shows the only icon."""
        x, y = self.icon
        region = self.home / "icon.png"

        def is_drawn():
            self.screenshot(region, (x - 6, y - 6, 12, 12))
            shown = subprocess.run(["identify", "-format", "%k", str(region)], capture_output=True, text=True)
            return int(shown.stdout or 0) > 3  # colours

        wait_until(is_drawn, "there is no icon")

    def open_panel(self):
        """Clicks again while the click counts as part of the one that has closed the panel."""
        import screen_reader
        slider = ("slider", "Color temperature")
        self.wait_for_icon()

        def is_open():
            if screen_reader.elements(*slider):
                return True
            self.click(*self.icon)
            try:
                return wait_until(lambda: screen_reader.elements(*slider), "", seconds=2)
            except TimeoutError:
                return False

        wait_until(is_open, "a click on the icon opens no panel")

    def log(self):
        return (self.home / "application.log").read_text()

    def wait_for_line(self, beginning):
        return wait_until(lambda: any(line.startswith(beginning) for line in self.log().splitlines()),
                          f"no line begins with {beginning!r}")

    def tool(self, *arguments):
        return subprocess.run([self.bundle / "Contents/MacOS/AmbertideCLI", *arguments], check=True, capture_output=True, text=True).stdout.strip()

    def call(self, method, *arguments):
        """A method of org.freedesktop.Application, with busctl's words for its arguments."""
        subprocess.run(["busctl", "--user", "call", "me.tovanu.Ambertide", "/me/tovanu/Ambertide",
                        "org.freedesktop.Application", method, *arguments], check=True, stdout=subprocess.DEVNULL)

    def activate(self):
        """What a launcher does when the application runs already."""
        self.call("Activate", "a{sv}", "0")

    def show_settings(self):
        self.call("ActivateAction", "sava{sv}", "settings", "0", "0")

    def setting(self, key):
        """The stored text; None while there is none."""
        file = configparser.ConfigParser(interpolation=None)
        file.optionxform = str
        try:
            file.read(self.home / "config/ambertide/defaults.ini")
        except configparser.Error:
            return None
        return file.get("General", "Ambertide." + key, fallback=None)

    def schedule(self):
        """The stored entries as (seconds, temperature, is enabled)."""
        stored = self.setting("ScheduleEntries")
        if not stored:
            return []
        text = stored[stored.index("["):stored.rindex("]") + 1].replace('\\"', '"')
        return [(entry["time"], entry["temperature"], entry["isEnabled"]) for entry in json.loads(text)]

    def white_point(self):
        """Red, green and blue of the first display's last table entries, 0 to 65535."""
        shown = subprocess.run([self.build / "tools/read-gamma-table"], capture_output=True, text=True, check=True)
        return tuple(int(channel) for channel in shown.stdout.splitlines()[0].split())

    # Keyboard, mouse and screen

    def xdotool(self, *arguments):
        found = subprocess.run(["xdotool", *(str(argument) for argument in arguments)], capture_output=True, text=True)
        return found.stdout.split()

    def move(self, x, y):
        self.xdotool("mousemove", round(x), round(y))

    def click(self, x, y, button=1):
        self.xdotool("mousemove", round(x), round(y), "click", button)

    def drag(self, *path):
        """Presses at the first point and lets go at the last."""
        first, *others = [("mousemove", round(x), round(y)) for x, y in path]
        moves = [word for move in others for word in move]
        self.xdotool(*first, "mousedown", 1, *moves, "mouseup", 1)

    def key(self, *keys):
        self.xdotool("key", "--clearmodifiers", *keys)

    def screenshot(self, path, region=None):
        crop = ["-crop", "{2}x{3}+{0}+{1}".format(*region), "+repage"] if region else []
        subprocess.run(["import", "-silent", "-window", "root", *crop, "-strip", "-define",
                        "png:exclude-chunks=date,time", str(path)], check=True)


def main(scenarios):
    """Runs the scenario that the command line names: <build folder> <scenario> [<panel>]."""
    build, name, *panel = sys.argv[1:]
    with Desktop(build, *panel) as desktop:
        try:
            scenarios[name](desktop)
        except BaseException:
            print(desktop.log() if desktop.application else "", file=sys.stderr)
            raise
