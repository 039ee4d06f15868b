"""What scripts/screenshots does for each look: <build folder> <folder for the pictures> <scale> <light or dark>.

The windows stand on a plain desktop, in one font, at one time of day, whatever the machine. A file system of its own
tells the application whether the command-line tool is installed.
"""

import base64
import json
import os
import pathlib
import subprocess
import sys
import uuid

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests/desktop"))

import screen_reader
from desktop import Desktop, wait_until

FONTS = """<fontconfig><dir>/usr/share/fonts/opentype/inter</dir><cachedir>{0}</cachedir>
<alias><family>Sans Serif</family><prefer><family>Inter</family></prefer></alias>
<match target="font"><edit name="hintstyle" mode="assign"><const>hintnone</const></edit></match></fontconfig>"""
DESKTOP = {"light": "#dfe4ec", "dark": "#16171b"}
SCHEDULE = [(7, 6500, True), (13, 4300, False), (21, 3400, True), (23.5, 2700, True)]
MARGIN = 24

build, folder, scale, theme = sys.argv[1], pathlib.Path(sys.argv[2]), int(sys.argv[3]), sys.argv[4]


def take(name, window=None):
    """Takes the picture of the window with this title, or of the corner of the desktop with icon and panel."""
    title = window or "Ambertide"
    identifier, = wait_until(lambda: desktop.xdotool("search", "--onlyvisible", "--name", f"^{title}$"), title)
    shown = dict(line.split("=") for line in desktop.xdotool("getwindowgeometry", "--shell", identifier))
    x, y, width, height = (int(shown[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))
    margin = MARGIN * scale
    region = (x - margin, y - margin, width + 2 * margin, height + 2 * margin)
    if window is None:
        region = (x - margin, 0, 1280 * scale - x + margin, y + height + margin)
    file = folder / f"{name}-{theme}.png"
    seen = []

    def rests():
        desktop.screenshot(file, region)
        seen.append(file.read_bytes())
        return len(seen) > 2 and len(set(seen[-3:])) == 1

    wait_until(rests, f"{name} does not come to rest")
    subprocess.run(["optipng", "-quiet", "-strip", "all", str(file)], check=True)


def start(tool=":"):
    """Starts the application. /usr/local/bin is empty for it, but for what the shell command `tool` puts there, and the
    bundle has a public key."""
    plist = desktop.bundle / "Contents/Info.plist"
    keyed = desktop.home / "Info.plist"
    key = base64.b64encode(bytes(32)).decode()
    keyed.write_text(plist.read_text().replace("<string></string>", f"<string>{key}</string>"))
    desktop.start_application("unshare", "--mount", "--map-root-user", "sh", "-c",
                              f'mount -t tmpfs none /usr/local/bin && mount --bind {keyed} {plist} && {tool} && '
                              'exec "$@"', "sh",
                              LC_ALL="en_US.UTF-8", **desktop.clock("2026-06-15 21:30:00"))
    desktop.wait_for_icon()


def take_settings(name, tab, label):
    desktop.show_settings()
    screen_reader.act("page tab", tab)
    screen_reader.element("label", label)
    desktop.xdotool("mousemove", 10, 700 * scale)
    take(name, "Ambertide Settings")


def store_schedule():
    entries = [{"id": str(uuid.uuid4()).upper(), "time": hour * 3600, "temperature": kelvin, "isEnabled": enabled}
               for hour, kelvin, enabled in SCHEDULE]
    text = json.dumps(entries).replace('"', '\\"')
    (desktop.home / ".config/ambertide/defaults.ini").write_text(
        f'[General]\nAmbertide.ScheduleEnabled=true\nAmbertide.ScheduleEntries="@ByteArray({text})"\n')


with Desktop(build, scale=scale, gtk_theme={"light": "Adwaita", "dark": "Adwaita:dark"}[theme]) as desktop:
    subprocess.run(["xsetroot", "-solid", DESKTOP[theme]], check=True)
    fonts = desktop.home / "fonts.conf"
    fonts.write_text(FONTS.format(desktop.home))
    os.environ["FONTCONFIG_FILE"] = str(fonts)
    if theme == "dark":
        desktop.start("/usr/bin/python3", str(pathlib.Path(__file__).with_name("portal.py")))
    start()
    take_settings("general", "General", "Command Line Tool")
    take_settings("schedule-empty", "Schedule", "No schedule entries. Add one to get started.")
    desktop.application.terminate()
    desktop.application.wait(20)
    store_schedule()
    start("ln -s / /usr/local/bin/ambertide")
    desktop.open_panel()
    take("panel")
    desktop.key("Escape")
    take_settings("general-installed", "General", "Command Line Tool")
    take_settings("schedule", "Schedule", "11:30 PM")
    screen_reader.act("push button", "Edit 9:00 PM")
    screen_reader.element("push button", "Save")
    take("editor", "Ambertide Settings")
    desktop.application.terminate()
    desktop.application.wait(20)
    desktop.start(str(desktop.build / "tools/show-update"))
    take("update", "Software Update")
