"""Reads a file of cards or a calendar as another program does, and tells the values that tests look at."""
import sys

import vobject

ADDRESS = ("street", "city")
NAME = ("family", "given", "additional", "prefix", "suffix")


def told(line):
    parts = {"N": NAME, "ADR": ADDRESS}.get(line.name)
    return " ".join(repr(getattr(line.value, part)) for part in parts) if parts else repr(line.value)


for component in vobject.readComponents(open(sys.argv[1], encoding="utf-8", newline="").read()):
    if component.name == "VCARD":
        for line in component.lines():
            print(f"{line.name}: {told(line)}")
        continue
    for entry in component.components():
        start = entry.dtstart.value if hasattr(entry, "dtstart") else None
        shown = [repr(entry.summary.value)] + ([str(start)] if entry.name == "VEVENT" else [])
        print(f"{entry.name}: {' '.join(shown)}")
