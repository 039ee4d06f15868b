"""What every job measures, whichever server shows the displays: ramps, levels, restoring and plugging."""
import random
import signal
import subprocess
import time

from machine import Application, differs, plug, row, set_temperature, tool, wait_for


def run_parts(parts, arguments):
    """Those that are named by the arguments, `name` or `name:number`, in their order; all where none are named."""
    for argument in arguments or [name for name in parts if name != "kills"]:
        name, _, number = argument.partition(":")
        parts[name](*([int(number)] if number else []))


class Measures:
    LEVELS = "levels off by"  # the name of that row, for a temperature

    def __init__(self, hardware, display, version):
        """The command `version` prints which server it is."""
        self.hardware, self.display = hardware, display
        printed = subprocess.run(version, capture_output=True, text=True).stdout.splitlines()[0]
        print(f"\n{printed}, {len(hardware.whites())} outputs\n\n| what | measured | reach |\n|---|---|---|",
              flush=True)

    def start(self, **environment):
        return Application(WAYLAND_DISPLAY=self.display, **environment)

    def levels(self, kelvin):
        row(self.LEVELS.format(kelvin), round(self.hardware.worst_error(kelvin), 4), self.hardware.UNIT,
            self.hardware.TOLERANCE)

    def tint(self, kelvin):
        set_temperature(kelvin)
        wait_for(lambda: self.hardware.shows(kelvin), 10)
        self.levels(kelvin)

    def ramp_from_neutral(self, kelvin):
        """By the machine's own clock, which is coarse: how long the sleeps take without anything between them."""
        begin = time.monotonic()
        for _ in range(60):
            time.sleep(1 / 30)
        sleeps = time.monotonic() - begin
        asked = set_temperature(kelvin)
        self.hardware.shows_since(asked, kelvin)
        seen = self.hardware.since(asked)
        # The first tables are held for 0.2 s before the steps begin; the last come a step before the end.
        first, last = (next((moment for moment, crtcs in seen if self.hardware.shows(shown, (moment, crtcs))), asked)
                       for shown in (5500, kelvin))
        row("tables of a ramp from neutral that were seen", sum(first <= moment <= last for moment, _ in seen))
        row("length of its 60 steps", last - first - 0.2 + sleeps / 60, "s")
        row("the same, in times of 60 sleeps of a thirtieth of a second",
            (last - first - 0.2) / sleeps * 60 / 59, "", 1.05)

    def first_tables(self, reach):
        for kelvin in (4500, 2700, 5000):
            asked = set_temperature(kelvin)
            wait_for(lambda: self.hardware.since(asked), 10)
            row("`set` to the first new table", 1000 * (self.hardware.since(asked)[0][0] - asked), "ms", reach)
            self.hardware.shows_since(asked, kelvin)
            self.levels(kelvin)
        tool("set", "4000")
        row("tinted by the tool itself", bool(wait_for(lambda: self.hardware.shows(4000), 10)))

    def idle(self, application, writes=lambda: 0):
        before, wakeups, changes = writes(), application.wakeups(), len(self.hardware.history)
        time.sleep(20)
        row("writes in 20 s of idle tint", writes() - before + len(self.hardware.history) - changes, "", 0)
        row("wake-ups a minute meanwhile", 3 * (application.wakeups() - wakeups))

    def restored_to(self, own):
        """A function of a moment: how many milliseconds later the hardware showed that again, for good."""
        return lambda moment: self.hardware.settled(moment, lambda entry: differs(entry[1], own) <= 1)

    def ends(self, what, ways=("neutral", "quit", signal.SIGTERM, signal.SIGKILL)):
        """Each way to end gives back what is shown without the application."""
        own = self.hardware.rested(2.5)[1]
        restored = self.restored_to(own)
        application = self.start()
        for way in ways:
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

    def plugging(self, reach=None, switch=lambda is_there: plug(1, is_there)):
        application = self.start()
        self.tint(4500)
        set_temperature(3000)
        time.sleep(0.4)
        switch(False)
        wait_for(lambda: len(self.hardware.whites()) == 1, 10)
        time.sleep(0.5)
        plugged = time.monotonic()
        switch(True)

        def first(is_wanted):
            moments = wait_for(lambda: [entry[0] for entry in self.hardware.since(plugged)
                                        if len(entry[1]) == 2 and is_wanted(entry)], 30)
            return moments[0] if moments else None

        both = first(lambda entry: True)
        tinted = first(lambda entry: (65535, 65535, 65535) not in self.hardware.whites(entry))
        row("plugged again during a ramp: first picture to tinted", 1000 * (tinted - both) if both and tinted else None,
            "ms", reach)
        settled = self.hardware.shows_since(plugged, 3000)
        row("both outputs show 3000 K", settled is not None and len(self.hardware.whites()) == 2)
        application.quit()

    def kills(self, count, restored, reach):
        """At random moments; `restored` tells in how many milliseconds after one all was given back."""
        delays, tinted = [], 0
        for _ in range(count):
            application = self.start()
            set_temperature(random.choice((2000, 3400, 5000)))
            time.sleep(random.uniform(0, 3.5))
            tinted += not self.hardware.is_neutral()
            delays.append(restored(application.end(signal.SIGKILL)))
        if count:
            row("SIGKILL at random moments", count)
            row("of these tinted at that moment", tinted)
            row("of these not restored", delays.count(None), "", 0)
            row("the slowest", max((delay for delay in delays if delay is not None), default=None), "ms", reach)
