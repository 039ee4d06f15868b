"""house.py <sources>: no #include line of src/ runs upwards or sideways."""

import pathlib
import re
import sys

# A folder may include itself, what is in it, and the floors below its own.
FLOORS = [["base"], ["ports", "protocol"], ["display", "integration", "update"], ["model"], ["ui", "adapters"],
          ["app", "cli"]]
FLOOR = {folder: height for height, floor in enumerate(FLOORS) for folder in floor}

source = pathlib.Path(sys.argv[1], "src")
wrong = []
for file in sorted(source.rglob("*.h")) + sorted(source.rglob("*.cpp")):
    own = file.relative_to(source).parts[0]
    for included in re.findall(r'^#include "([^"]+)"', file.read_text(), re.MULTILINE):
        other = included.split("/")[0]
        if other != own and FLOOR.get(other, len(FLOORS)) >= FLOOR[own]:
            wrong.append(f"{file.relative_to(source)} includes {included}")
sys.exit("\n".join(wrong) or None)
