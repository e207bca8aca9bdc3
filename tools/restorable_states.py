"""Whether every state of a device's storage restores: each on a copy of the device, as the last of the storage,
by the program's own unattended restore. Used by random_use."""
import pathlib
import shutil
import struct
import tempfile
import time

import device_story as story
from screen import OWN_SETTINGS, PROGRAM, Screen

STORAGE = "\\Storage Card\\Tolvenar\\Backup"
RECORD_BYTES, NUMBER_AT, TYPE_AT, STATE_TYPE = 32, 20, 24, 32
# A storage that lies on the device itself is no part of what a backup of it holds.
OWN_ENDINGS = (".sav", ".jrn", ".jrn_1", "tolvenar_log.txt")
PATIENCE_S = 90
# What is done to a copy, so that the restore has something to bring back.
DAMAGE = (("rm", "\\My Documents"), ("mkdir", "\\Not wanted"),
          ("reg-set", "HKLM\\Software\\Not wanted", "Run", "REG_SZ", "yes"))
NOTHING_TO_RESTORE = "There is nothing to Restore."


def records(journal):
    return [journal[at:at + RECORD_BYTES] for at in range(0, len(journal), RECORD_BYTES)]


def number_of(record):
    return struct.unpack_from("<H", record, NUMBER_AT)[0]


def state_numbers(journal):
    return sorted(number_of(r) for r in records(journal) if r[TYPE_AT] == STATE_TYPE)


def until(journal, number):
    """The journal as it was when this state was the last."""
    return b"".join(r for r in records(journal) if number_of(r) <= number)


def contents(dump):
    """What a restore must bring back of a device."""
    mine = [f for f in dump["files"] if not f["path"].endswith(OWN_ENDINGS)]
    return story.comparable(dict(dump, files=mine))


class Restorer:
    """Restores states of one device on copies of it."""

    def __init__(self, cedev, folder, pictures):
        self.cedev, self.folder, self.pictures = cedev, folder, pictures

    def failures(self, known):
        """Lines that say what did not restore. `known`: what a state must bring back, by its number."""
        with tempfile.TemporaryDirectory() as work:
            screen = Screen(self.cedev, self.folder, self.pictures)
            screen.ask("get", STORAGE + ".jrn", pathlib.Path(work, "journal"))
            screen.end()
            journal = pathlib.Path(work, "journal").read_bytes()
            numbers = state_numbers(journal)
            lines = [f"state {number} is gone" for number in sorted(known.keys() - set(numbers))]
            for number in numbers:
                lines += self.restore(pathlib.Path(work), journal, number, known.get(number))
        return lines

    def restore(self, work, journal, number, wanted):
        copy = work / "copy"
        shutil.copytree(self.folder, copy)
        (work / "until").write_bytes(until(journal, number))
        screen = Screen(self.cedev, copy, self.pictures)
        screen.ask("put", work / "until", STORAGE + ".jrn")
        for words in DAMAGE:
            screen.ask(*words)
        box = run(screen, "AutoRestore: Last State")
        dump = screen.ask("dump")
        screen.end()
        shutil.rmtree(copy)
        lines = [box] if box and NOTHING_TO_RESTORE not in box else []
        if wanted:
            lines += story.differences(wanted, contents(dump))
        return [f"state {number}: {line}" for line in lines]


def run(screen, arguments):
    """Runs the program alone to its end, or to a box; what the box tells, if any."""
    screen.ask("start", PROGRAM, arguments)
    end = time.monotonic() + PATIENCE_S
    while time.monotonic() < end:
        windows = screen.windows()
        if any(w["class"] == "#32770" for w in windows):
            return " ".join(w["text"] for w in windows if w["class"] == "Static" and w["text"])
        if not any(PROGRAM in p["path"] for p in screen.ask("ps")):
            return ""
        time.sleep(0.05)
    return f"{arguments} does not end"


def back_up(screen):
    """Makes the device's state known: whatever was done to the settings, the first storage is used. The failure."""
    folder, name = STORAGE.rsplit("\\", 1)
    screen.ask("reg-set", OWN_SETTINGS, "StoragePath", "REG_SZ", folder + "\\")
    screen.ask("reg-set", OWN_SETTINGS, "StorageFile", "REG_SZ", name)
    screen.ask("reg-set", OWN_SETTINGS, "onTime", "REG_DWORD", 0)
    return run(screen, "AutoBackup: External")


def last_state(screen, work):
    screen.ask("get", STORAGE + ".jrn", work / "journal")
    return max(state_numbers((work / "journal").read_bytes()), default=0)
