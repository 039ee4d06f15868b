"""What scripts/desktops does inside its Debian: [<desktop>...]. Every desktop is drawn on a virtual X server, where a pointer
can be moved and pictures be taken of it, whether it is an X11 desktop or a Wayland compositor in a window."""

import itertools
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

SOURCES = pathlib.Path(__file__).resolve().parent.parent
RESULTS = SOURCES / "build/desktops"
PROGRAMS = pathlib.Path("/usr/lib/ambertide/Contents/MacOS")
WIDTH, HEIGHT = 1280, 800
STEPS = ["click", "drag", "dark", "settings", "search", "search after quitting", "quit", "scale 1.5"]
SYSTEM_BUS = """<busconfig><type>system</type><listen>unix:path={0}</listen><policy context="default">
<allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/><allow user="*"/></policy></busconfig>"""
SWAY = """output * mode --custom {0}x{1} scale {2}
output * bg #35608a solid_color
bar {{
    position bottom
    status_command while echo status; do sleep 100; done
}}
"""
WAYBAR = '{"layer": "top", "position": "top", "height": 30, "modules-right": ["tray"], "tray": {"icon-size": 18}}'


def wait_until(condition, what, seconds=40):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        value = condition()
        if value:
            return value
        time.sleep(0.1)
    raise TimeoutError(what)


def output(*command):
    return subprocess.run(command, capture_output=True, text=True).stdout


def is_on_bus(name):
    return "b true" in output("busctl", "--user", "call", "org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                              "NameHasOwner", "s", name)


class Desktop:
    """`place` is where the icon appears, in logical pixels: how far left of the right edge, and how far below the top
    or, when negative, above the bottom. None where the desktop shows no icons."""

    place = None
    environment = {}
    opens_menu = False  # at a click, and not the panel
    title_bar = 0  # of the panel, less the line that it spares there

    def __init__(self, name, scale):
        self.name, self.scale = name, scale
        self.pixels = scale  # for each logical one
        self.width = WIDTH
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="desktop-"))
        for variable in list(os.environ):
            if variable.startswith(("DBUS_", "DISPLAY", "QT_", "WAYLAND_", "XDG_")):
                del os.environ[variable]
        self.run = self.home / "run"
        self.run.mkdir(mode=0o700)
        os.environ.update(HOME=str(self.home), XDG_RUNTIME_DIR=str(self.run), LIBGL_ALWAYS_SOFTWARE="1", USER="root",
                          QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", **self.environment)
        self.processes = []
        self._start_server()
        self._start_buses()
        self.start_desktop()
        self.pictures = itertools.count()

    def start(self, *command, log="desktop.log", **environment):
        file = open(self.home / log, "ab")
        process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *command], stdout=file, stderr=file,
                                   env={**os.environ, **environment})
        self.processes.append(process)
        return process

    def _start_server(self):
        display = next(f":{number}" for number in range(20, 99) if not os.path.exists(f"/tmp/.X11-unix/X{number}"))
        self.start("Xvfb", display, "-noreset", "-nolisten", "tcp", "-screen", "0", f"{WIDTH}x{HEIGHT}x24")
        wait_until(lambda: os.path.exists(f"/tmp/.X11-unix/X{display[1:]}"), "there is no X server")
        self.display = os.environ["DISPLAY"] = display

    def _start_buses(self):
        (self.home / "system.conf").write_text(SYSTEM_BUS.format(self.run / "system"))
        self.start("dbus-daemon", "--session", "--nofork", f"--address=unix:path={self.run}/bus")
        self.start("dbus-daemon", f"--config-file={self.home}/system.conf", "--nofork")
        wait_until(lambda: (self.run / "bus").exists() and (self.run / "system").exists(), "there is no bus")
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.run}/bus"
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={self.run}/system"

    def enter_wayland(self):
        """Programs that are started after this use the Wayland compositor."""
        sockets = wait_until(lambda: [found for found in self.run.glob("wayland-*") if found.suffix != ".lock"],
                             "there is no compositor")
        os.environ["WAYLAND_DISPLAY"] = sockets[0].name
        del os.environ["DISPLAY"]
        output("dbus-update-activation-environment", "DISPLAY=", f"WAYLAND_DISPLAY={sockets[0].name}")

    def end(self):
        for process in reversed(self.processes):
            process.kill()
            process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    # What a person does

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *(str(argument) for argument in arguments)], stdout=subprocess.DEVNULL,
                       env={**os.environ, "DISPLAY": self.display}, check=True)
        time.sleep(0.3)

    def click(self, x, y, button=1):
        self.xdotool("mousemove", round(x), round(y))
        self.xdotool("click", button)

    def icon(self):
        right, down = self.place
        return self.width - right * self.pixels, (down * self.pixels) % HEIGHT

    def picture(self, step):
        time.sleep(1.5)
        name = self.name if self.scale == 1 else f"{self.name}-scaled"
        file = RESULTS / f"{name}-{next(self.pictures)}-{step.replace(' ', '-')}.png"
        subprocess.run(["import", "-silent", "-window", "root", file], env={**os.environ, "DISPLAY": self.display})
        return file

    def application(self):
        self.ambertide = self.start(str(PROGRAMS / "Ambertide"), log="application.log")
        wait_until(lambda: is_on_bus("me.tovanu.Ambertide"), "the application does not come up")
        time.sleep(7 if self.place else 15)  # the application waits before it takes a desktop for one without icons

    def call(self, action):
        output("busctl", "--user", "--auto-start=no", "call", "me.tovanu.Ambertide", "/me/tovanu/Ambertide",
               "org.freedesktop.Application", "ActivateAction", "sava{sv}", action, "0", "0")

    def open_panel(self):
        if self.place:
            self.click(*self.icon())
        if self.opens_menu:
            time.sleep(1)
            self.click(self.icon()[0] - 10, self.icon()[1] + 40 * self.pixels)

    def close_panel(self):
        self.xdotool("key", "Escape")
        time.sleep(1)

    def search(self, words):
        """Types the words where the desktop searches. False where it has no search."""
        return False


class Plasma(Desktop):
    place = 184, -30
    environment = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "6",
                   "QT_QUICK_BACKEND": "software", "XDG_MENU_PREFIX": "plasma-", "XDG_SESSION_TYPE": "x11"}

    def start_shell(self):
        self.start("kded6")
        self.start("plasmashell", "--no-respawn")
        wait_until(lambda: "StatusNotifierHost" in output("busctl", "--user", "list"), "there is no panel")
        time.sleep(8)

    def start_desktop(self):
        if self.scale != 1:
            os.environ["QT_SCREEN_SCALE_FACTORS"] = str(self.scale)
        self.start("kwin_x11", "--no-kactivities")
        self.start_shell()

    def make_dark(self):
        output("plasma-apply-lookandfeel", "-a", "org.kde.breezedark.desktop")
        time.sleep(4)

    def search(self, words):
        output("busctl", "--user", "call", "org.kde.krunner", "/App", "org.kde.krunner.App", "query", "s", words)
        time.sleep(4)
        return True


class PlasmaWayland(Plasma):
    environment = {**Plasma.environment, "XDG_SESSION_TYPE": "wayland"}

    def start_desktop(self):
        self.start("kwin_wayland", "--x11-display", self.display, "--width", str(WIDTH), "--height", str(HEIGHT),
                   "--no-lockscreen")
        self.enter_wayland()
        time.sleep(2)
        output("kscreen-doctor", f"output.1.scale.{self.scale}")
        self.start_shell()


class Gnome(Desktop):
    # A mutter in a window crashes when it is given a gamma table.
    environment = {"XDG_CURRENT_DESKTOP": "GNOME", "XDG_SESSION_TYPE": "wayland", "XDG_MENU_PREFIX": "gnome-",
                   "AMBERTIDE_DISPLAY": "none"}
    extensions = "[]"
    title_bar = 23

    def set(self, schema, key, value):
        subprocess.run(["gsettings", "set", schema, key, value], check=True)

    def start_desktop(self):
        self.pixels, self.width = 1, WIDTH / self.scale  # a mutter in a window draws no larger, but on less room
        self.start("python3", "-m", "dbusmock", "--template", "logind")
        time.sleep(2)
        self.set("org.gnome.shell", "welcome-dialog-last-shown-version", "99")
        self.set("org.gnome.shell", "enabled-extensions", self.extensions)
        self.set("org.gnome.desktop.notifications", "show-banners", "false")
        self.set("org.gnome.desktop.interface", "enable-animations", "false")
        self.set("org.gnome.mutter", "experimental-features", "['scale-monitor-framebuffer']")
        self.start("gnome-shell", "--nested", "--wayland", "--no-x11",
                   MUTTER_DEBUG_DUMMY_MODE_SPECS=f"{WIDTH}x{HEIGHT}", MUTTER_DEBUG_DUMMY_MONITOR_SCALES=str(self.scale))
        self.enter_wayland()
        wait_until(lambda: is_on_bus("org.gnome.Shell"), "the shell does not come up")
        time.sleep(8)
        output("busctl", "--user", "set-property", "org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell",
               "OverviewActive", "b", "false")

    def make_dark(self):
        self.set("org.gnome.desktop.interface", "color-scheme", "prefer-dark")
        time.sleep(3)

    def search(self, words):
        self.xdotool("key", "super")
        time.sleep(2)
        self.xdotool("type", words)
        time.sleep(4)
        return True


class GnomeWithExtension(Gnome):
    place = 72, 16
    extensions = "['ubuntu-appindicators@ubuntu.com']"
    opens_menu = True


class Sway(Desktop):
    place = 10, -12
    environment = {"XDG_CURRENT_DESKTOP": "sway", "XDG_SESSION_TYPE": "wayland", "WLR_BACKENDS": "x11",
                   "WLR_RENDERER": "pixman"}

    def start_desktop(self):
        (self.home / "sway.conf").write_text(SWAY.format(WIDTH, HEIGHT, self.scale))
        self.start("sway", "--config", str(self.home / "sway.conf"))
        self.enter_wayland()
        time.sleep(4)

    def make_dark(self):
        subprocess.run(["gsettings", "set", "org.gnome.desktop.interface", "color-scheme", "prefer-dark"], check=True)
        time.sleep(3)


class Labwc(Sway):
    place = 20, 13
    environment = {**Sway.environment, "XDG_CURRENT_DESKTOP": "labwc:wlroots"}

    def start_desktop(self):
        (self.home / "waybar.json").write_text(WAYBAR)
        self.start("labwc")
        self.enter_wayland()
        time.sleep(2)
        output("wlr-randr", "--output", "X11-1", "--custom-mode", f"{WIDTH}x{HEIGHT}", "--scale", str(self.scale))
        self.start("swaybg", "-c", "#35608a")
        self.start("waybar", "-c", str(self.home / "waybar.json"))
        wait_until(lambda: is_on_bus("org.kde.StatusNotifierWatcher"), "there is no panel")
        time.sleep(4)


DESKTOPS = {"plasma-x11": Plasma, "plasma-wayland": PlasmaWayland, "gnome": Gnome, "gnome-extension": GnomeWithExtension,
            "sway": Sway, "labwc": Labwc}


def changed_area(before, after):
    """x, y, width and height of the largest part in which two pictures differ by more than a shadow."""
    listing = output("convert", before, after, "-compose", "difference", "-composite", "-colorspace", "gray", "-threshold",
                     "20%", "-morphology", "close", "square:4", "-define", "connected-components:verbose=true",
                     "-connected-components", "8", "null:")
    parts = re.findall(r"(\d+)x(\d+)\+(\d+)\+(\d+) \S+ (\d+) (?:gray\(255\)|srgb\(255,255,255\)|white)", listing)
    sizes = [tuple(map(int, part)) for part in parts]
    width, height, x, y, _ = max(sizes, key=lambda part: part[4], default=(0, 0, 0, 0, 0))
    return x, y, width, height


def brightness(picture, area):
    x, y, width, height = area
    return float(output("convert", picture, "-crop", f"{width}x{height}+{x}+{y}", "-colorspace", "gray", "-format",
                        "%[fx:mean]", "info:"))


def temperature():
    return int(output(str(PROGRAMS / "AmbertideCLI"), "get") or 0)


def use(desktop, scale_only=False):
    """Goes through the steps; returns the outcome of each, in a few words."""
    desktop.application()
    before = desktop.picture("start")
    if not desktop.place:  # the panel is a window, and open
        desktop.close_panel()
        opened = before
        before = desktop.picture("closed")
    for _ in range(3):  # on a busy machine a menu may open too late
        if desktop.place:
            desktop.open_panel()
            opened = desktop.picture("click")
        panel = changed_area(before, opened)
        x, y, width, height = panel
        is_panel = abs(width / desktop.pixels - 300) < 60 and 150 < height / desktop.pixels < 340
        if is_panel or not desktop.place:
            break
        desktop.close_panel()
    described = f"{width}x{height} at {x},{y}"
    if scale_only:
        return {"scale 1.5": described if is_panel else f"no panel ({described})"}
    outcome = {"click": described if is_panel else f"no panel ({described})"}
    if not desktop.place:
        output(str(PROGRAMS / "Ambertide"))
        panel = changed_area(before, desktop.picture("started-again"))
        x, y, width, height = panel
    middle = y + desktop.title_bar + 98
    desktop.xdotool("mousemove", x + width - 27, middle, "mousedown", 1)
    for part in range(20, 7, -1):
        desktop.xdotool("mousemove", x + 16 + round((width - 43) * part / 20), middle)
    desktop.xdotool("mouseup", 1)
    light = desktop.picture("drag")
    outcome["drag"] = f"to {temperature()} K"
    desktop.make_dark()
    dark = desktop.picture("dark")
    outcome["dark"] = "yes" if brightness(dark, panel) < brightness(light, panel) - 0.3 else "no"
    desktop.close_panel()
    desktop.call("settings")
    desktop.picture("settings")
    outcome["settings"] = "see picture"
    desktop.xdotool("key", "ctrl+w")
    outcome["search"] = "see picture" if desktop.search("halogen") else "-"
    desktop.picture("search")
    desktop.xdotool("key", "Escape", "key", "Escape")
    desktop.call("quit")
    outcome["quit"] = "yes" if desktop.ambertide.wait(10) == 0 else "no"
    if desktop.search("term"):
        desktop.picture("search after quitting")
        outcome["search after quitting"] = "started it" if is_on_bus("me.tovanu.Ambertide") else "left it alone"
    return outcome


def main(names):
    RESULTS.mkdir(parents=True, exist_ok=True)
    rows = []
    for name in names:
        outcome = {}
        for scale in 1, 1.5:
            desktop = None
            try:
                desktop = DESKTOPS[name](name, scale)
                outcome.update(use(desktop, scale_only=scale != 1))
            except Exception as error:
                outcome[f"scale {scale}" if scale != 1 else "click"] = f"{type(error).__name__}: {error}"
            finally:
                if desktop:
                    desktop.end()
        rows.append(f"| {name} | " + " | ".join(outcome.get(step, "-") for step in STEPS) + " |")
        print(rows[-1], flush=True)
    table = ["| desktop | " + " | ".join(STEPS) + " |", "|---" * (len(STEPS) + 1) + "|", *rows]
    (RESULTS / "table.md").write_text("\n".join(table) + "\n")


if __name__ == "__main__":
    main(sys.argv[1:] or list(DESKTOPS))
