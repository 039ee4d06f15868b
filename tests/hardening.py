"""hardening.py <folder>: fails unless each program in it was built to withstand faults in memory, as the file itself
tells: by its dynamic section, the functions that it imports and, where it has debug information, its compiler's words.
Those that wait or run as root have to do without Qt."""

import pathlib
import re
import subprocess
import sys

FLAGS = [b"-fstack-protector-strong", b"-fstack-clash-protection", b"-fcf-protection|-mbranch-protection"]


def lacks(program):
    tables = subprocess.run(["readelf", "-hdlW", "--dyn-syms", program], capture_output=True, text=True).stdout
    for name, pattern in {"PIE": r"\(FLAGS_1\).* PIE", "BIND_NOW": r"\(FLAGS\).*BIND_NOW", "RELRO": "GNU_RELRO",
                          "stack protector": "__stack_chk_fail"}.items():
        if not re.search(pattern, tables):
            yield name
    if program.name not in ("Ambertide", "AmbertideCLI") and "libQt" in tables:
        yield "independence of Qt"
    producers = set(re.findall(rb"GNU C\+\+[^\0]*", program.read_bytes()))
    for producer in producers:
        for flag in FLAGS:
            if not re.search(flag, producer):
                yield f"{flag.decode()} ({producer.decode()})"
    if program.name == "AmbertideInstallHelper" and not any(b"-O" not in each for each in producers):
        if not re.search(r"__\w+_chk@", tables):
            yield "FORTIFY"


programs = sorted(path for path in pathlib.Path(sys.argv[1]).iterdir() if path.name.startswith("Ambertide"))
faults = [f"{program.name} lacks {what}" for program in programs for what in lacks(program)]
print("\n".join(faults) or f"{len(programs)} programs")
sys.exit(bool(faults) or not programs)
