"""What is the same for every server: a job, and the parts in which it measures ramps, levels, restoring and plugging."""
import random
import signal
import subprocess
import time

from machine import Application, Hardware, Session, differs, plug, row, set_temperature, tool, wait_for


class Job:
    """A session of one server and what is measured there; each method below `run` is a part, or a piece of one."""

    LEVELS = "levels off by"  # the name of that row, for a temperature
    FIRST_TABLE = None  # the milliseconds after `set` that it may take
    PLUGGED, KILLED = 250, 500  # the same after a plug, and after SIGKILL

    def __init__(self, script, version, hardware=None):
        """The shell script runs the server; the command `version` prints which one it is."""
        self.hardware = hardware or Hardware(2)
        self.session = Session(script)
        self.display = self.session.wayland_display()
        time.sleep(5)
        self.hardware.start()
        printed = subprocess.run(version, capture_output=True, text=True).stdout.splitlines()[0]
        print(f"\n{printed}\n\n| what | measured | reach |\n|---|---|---|", flush=True)

    def run(self, arguments):
        """Runs the parts that are named, as `part` or `part:number`, in this order."""
        for argument in arguments:
            name, _, number = argument.partition(":")
            getattr(self, name)(*([int(number)] if number else []))
        self.session.stop()

    def start(self, **environment):
        return Application(WAYLAND_DISPLAY=self.display, **environment)

    def levels(self, kelvin):
        row(self.LEVELS.format(kelvin), round(self.hardware.worst_error(kelvin), 4), self.hardware.UNIT,
            self.hardware.TOLERANCE)

    def tint(self, kelvin):
        set_temperature(kelvin)
        wait_for(lambda: self.hardware.shows(kelvin), 10)
        self.levels(kelvin)

    def plain(self):
        application = self.start()
        asked = set_temperature(3400)
        self.hardware.shows_since(asked, 3400)
        seen = self.hardware.since(asked)
        # The first tables are held for 0.2 s before the steps begin; the last come a step before the end.
        first, last = (next((entry[0] for entry in seen if self.hardware.shows(shown, entry)), asked)
                       for shown in (5500, 3400))
        row("tables of a ramp from neutral that were seen", sum(first <= moment <= last for moment, _ in seen))
        row("length of a ramp", last - first - 0.2 + 1 / 30, "s", 2.1)
        for kelvin in (4500, 2700, 5000):
            asked = set_temperature(kelvin)
            wait_for(lambda: self.hardware.since(asked), 10)
            row("`set` to the first new table", 1000 * (self.hardware.since(asked)[0][0] - asked), "ms",
                self.FIRST_TABLE)
            self.hardware.shows_since(asked, kelvin)
            self.levels(kelvin)
        tool("set", "4000")
        row("tinted by the tool itself", bool(wait_for(lambda: self.hardware.shows(4000), 10)))
        application.quit()

    def idle(self, count_writes=lambda: 0, **environment):
        application = self.start(**environment)
        self.tint(3400)
        self.hardware.rested()
        before, wakeups, changes = count_writes(), application.wakeups(), len(self.hardware.history)
        time.sleep(20)
        row("writes in 20 s of idle tint", count_writes() - before + len(self.hardware.history) - changes, "", 0)
        row("wake-ups a minute meanwhile", 3 * (application.wakeups() - wakeups))
        application.quit()

    def restored_to(self, own):
        """Returns a function of a moment: how many milliseconds later the hardware showed `own` again, for good."""
        return lambda moment: self.hardware.settled(moment, lambda entry: differs(entry[1], own) <= 1)

    def ends(self, what="plain", kills=3):
        """Checks that each way to end brings back what is shown without the application."""
        own = self.hardware.rested(2.5)[1]
        restored = self.restored_to(own)
        application = self.start()
        for way in ["neutral", "quit", signal.SIGTERM] + kills * [signal.SIGKILL]:
            if application.process.poll() is not None:
                application = self.start()
            set_temperature(3400)
            wait_for(lambda: self.hardware.shows(3400), 10)
            time.sleep(0.3)
            if way == "neutral":
                row(f"{what}: neutral, ramp included", restored(set_temperature(6500)), "ms")
                continue
            ended = application.quit() if way == "quit" else application.end(way)
            row(f"{what}: {getattr(way, 'name', way)} to restored", restored(ended), "ms", 500)
        row(f"{what}: restored levels off by", differs(self.hardware.rested(2.5)[1], own), "of 65535", 1)

    @staticmethod
    def switch(is_there):
        plug(1, is_there)

    def plugging(self):
        application = self.start()
        self.tint(4500)
        set_temperature(3000)
        time.sleep(0.4)
        self.switch(False)
        wait_for(lambda: len(self.hardware.whites()) == 1, 10)
        time.sleep(0.5)
        plugged = time.monotonic()
        self.switch(True)

        def first(is_wanted):
            moments = wait_for(lambda: [entry[0] for entry in self.hardware.since(plugged)
                                        if len(entry[1]) == 2 and is_wanted(entry)], 30)
            return moments[0] if moments else None

        both = first(lambda entry: True)
        tinted = first(lambda entry: (65535, 65535, 65535) not in self.hardware.whites(entry))
        row("plugged again during a ramp: first picture to tinted", 1000 * (tinted - both) if both and tinted else None,
            "ms", self.PLUGGED)
        settled = self.hardware.shows_since(plugged, 3000)
        row("both outputs show 3000 K", settled is not None and len(self.hardware.whites()) == 2)
        application.quit()

    def kills(self, count):
        """Kills the application at random moments."""
        restored, delays, tinted = self.restored_to(self.hardware.rested(2.5)[1]), [], 0
        for _ in range(count):
            application = self.start()
            set_temperature(random.choice((2000, 3400, 5000)))
            time.sleep(random.uniform(0, 2.5))
            tinted += not self.hardware.is_neutral()
            delays.append(restored(application.end(signal.SIGKILL)))
        row("SIGKILL at random moments", count)
        row("of these tinted at that moment", tinted)
        row("of these not restored", delays.count(None), "", 0)
        row("the slowest", max((delay for delay in delays if delay is not None), default=None), "ms", self.KILLED)
