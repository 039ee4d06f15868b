"""A desktop of the test's own: X server, buses, window manager, panel and accessibility, with Ambertide on it.

One a process, since the accessibility library connects once. Everything is on free numbers and in a temporary folder,
and ends with the process. Times out with an exception; waits poll a condition, never a fixed time.
"""

import configparser
import ctypes
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
PANELS = HERE / "panels"
SERVICES = ("org.a11y.Bus.service", "org.xfce.Xfconf.service")
BUS_CONFIGURATION = """<busconfig><type>session</type><listen>unix:path={0}/bus</listen><servicedir>{0}/services</servicedir>
<policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy></busconfig>
"""


def wait_until(condition, what, seconds=20):
    """Returns the first true value of `condition`."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        value = condition()
        if value:
            return value
        time.sleep(0.02)
    raise TimeoutError(what)


def _end_with_parent():
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)


class Desktop:
    """Starts all but Ambertide. `panel` is a program of panels/, or None; `environment` is added to everybody's."""

    def __init__(self, build, panel="xfce4-panel", size=(1280, 800), environment=None):
        self.build = pathlib.Path(build).resolve()
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
                          GTK_THEME="Adwaita", NO_AT_BRIDGE="0")
        os.environ.update(environment or {})
        self._start_server(size)
        self._start_buses()
        self.start("openbox", "--config-file", str(PANELS / "openbox.xml"))
        if panel:
            self._start_panel(panel)
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
        if panel == "xfce4-panel":
            folder = self.home / "config/xfce4/xfconf/xfce-perchannel-xml"
            folder.mkdir(parents=True)
            shutil.copy(PANELS / "xfce4-panel.xml", folder)
            self.start("xfce4-panel", "--disable-wm-check")
        elif panel == "lxqt-panel":
            self.start("lxqt-panel", "-c", str(PANELS / "lxqt-panel.conf"))
        else:
            self.start("tint2", "-c", str(PANELS / "tint2rc"))
        wait_until(lambda: self.xdotool("search", "--class", panel), f"{panel} shows no window")

    # The application

    def start_application(self, *arguments):
        """Returns when it takes requests."""
        log = open(self.home / "application.log", "ab")
        program = self.build / "Ambertide.app/Contents/MacOS/Ambertide"
        self.application = self.start(str(program), *arguments, stdout=log, stderr=subprocess.STDOUT)
        self.wait_for_line("Registering for CLI")
        return self.application

    def log(self):
        return (self.home / "application.log").read_text()

    def wait_for_line(self, beginning):
        return wait_until(lambda: any(line.startswith(beginning) for line in self.log().splitlines()),
                          f"no line begins with {beginning!r}")

    def tool(self, *arguments):
        program = self.build / "Ambertide.app/Contents/MacOS/AmbertideCLI"
        return subprocess.run([program, *arguments], check=True, capture_output=True, text=True).stdout.strip()

    def activate(self):
        """What a launcher does when the application runs already."""
        subprocess.run(["busctl", "--user", "call", "me.tovanu.Ambertide", "/me/tovanu/Ambertide",
                        "org.freedesktop.Application", "Activate", "a{sv}", "0"], check=True, stdout=subprocess.DEVNULL)

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
        self.xdotool("mousemove", "--sync", round(x), round(y))

    def click(self, x, y, button=1):
        self.move(x, y)
        self.xdotool("click", button)

    def drag(self, path):
        self.move(*path[0])
        self.xdotool("mousedown", 1)
        for point in path[1:]:
            self.move(*point)
        self.xdotool("mouseup", 1)

    def key(self, *keys):
        self.xdotool("key", "--clearmodifiers", *keys)

    def screenshot(self, path, region=None):
        crop = ["-crop", "{2}x{3}+{0}+{1}".format(*region), "+repage"] if region else []
        subprocess.run(["import", "-silent", "-window", "root", *crop, str(path)], check=True)

    # Accessibility

    def _tree(self):
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
        return Atspi

    def accessible_application(self):
        atspi = self._tree()

        def find():
            root = atspi.get_desktop(0)
            root.clear_cache()
            for index in range(root.get_child_count()):
                child = root.get_child_at_index(index)
                if child is not None and child.get_name() == "Ambertide":
                    child.set_cache_mask(atspi.Cache.NONE)
                    return child
            return None

        return wait_until(find, "Ambertide is not on the accessibility bus")

    def elements(self, role=None, name=None, showing=True):
        """Accessible elements in reading order, with these properties."""
        atspi = self._tree()
        found = []

        def visit(element):
            if element is None:
                return
            try:
                states = element.get_state_set()
                matches = (role is None or element.get_role_name() == role) and (name is None or element.get_name() == name)
                if matches and (not showing or states.contains(atspi.StateType.SHOWING)):
                    found.append(element)
                for index in range(element.get_child_count()):
                    visit(element.get_child_at_index(index))
            except gi_error():
                pass  # it went while it was looked at

        visit(self.accessible_application())
        return found

    def element(self, role, name, seconds=20):
        return wait_until(lambda: self.elements(role, name), f"no {role} {name!r} is shown", seconds)[0]

    def extents(self, element):
        """x, y, width, height on the screen."""
        box = element.get_component_iface().get_extents(self._tree().CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    def click_on(self, role, name):
        x, y, width, height = self.extents(self.element(role, name))
        self.click(x + width / 2, y + height / 2)

    def is_checked(self, role, name):
        return self.element(role, name).get_state_set().contains(self._tree().StateType.CHECKED)

    def texts(self):
        """What the labels that are shown say."""
        return [element.get_name() for element in self.elements("label")]


def gi_error():
    from gi.repository import GLib
    return GLib.Error


def main(scenarios):
    """Runs the scenario that the command line names: <build folder> <scenario> [<panel>]."""
    build, name, *panel = sys.argv[1:]
    desktop = Desktop(build, *panel)
    try:
        scenarios[name](desktop)
    except BaseException:
        print(desktop.log() if desktop.application else "", file=sys.stderr)
        raise
    finally:
        desktop.close()
