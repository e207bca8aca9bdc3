"""A device whose storage the program for the PC reads. Used by device_exports and device_new_pairs."""
import pathlib
import subprocess
import sys
import tempfile

from device_story import CARD, Device
from random_device import RandomDevice

STORAGE = CARD + "\\Tolvenar\\Backup"
STATES = 3
CHANGES = 12
INCOMPLETE = 3  # nothing but what no storage has is left out
TOOLS = pathlib.Path(__file__).parent


class Wrong(Exception):
    pass


def demand(holds, what):
    if not holds:
        raise Wrong(what)


class StoredDevice:
    """A device that a seed chooses, a number or "demo", and the PC's program over its storage."""

    def __init__(self, cedev, programs, tolvenar, seed, work):
        self.cedev, self.programs, self.tolvenar, self.seed, self.work = cedev, programs, tolvenar, seed, work
        self.random = RandomDevice(seed, work)
        self.device = Device(cedev, str(work / "device"))
        self.home = str(work / "Backup")

    def make(self):
        if self.seed == "demo":
            subprocess.run([TOOLS / "make_demo_profile", self.work / "demo"], check=True)
            self.device.call("create", str(self.work / "demo"))
        else:
            self.device.script(self.random.fill())
        self.device.call("install", self.programs)

    def change(self):
        for _ in range(CHANGES):
            words = self.random.change()
            # A file that is held is no part of a backup.
            if words[0] != "lock":
                subprocess.run([self.cedev, self.device.folder, *words], capture_output=True, check=False)

    def back_up(self, device):
        demand(device.run("AutoBackup: External") == 0, "a backup fails")

    def back_up_states(self):
        """The dumps at each backup, by its number; the device has changed since the last one."""
        told = {}
        for state in range(1, STATES + 1):
            self.back_up(self.device)
            told[state] = self.device.dump()
            self.change()
        self.fetch(self.device)
        return told

    def fetch(self, device):
        for ending in (".sav", ".jrn"):
            device.call("get", STORAGE + ending, self.home + ending)

    def pc(self, *words, codes=(0, INCOMPLETE)):
        result = subprocess.run([self.tolvenar, *map(str, words)], capture_output=True)
        demand(result.returncode in codes, f"{words}: {result.returncode} {result.stderr.decode()[-600:]}")
        return result.stdout

    def make_copy(self, address, name):
        """A device that is made of a state."""
        profile = self.work / f"profile {name}"
        self.pc("export", address, "profile", "--ids", "-o", profile)
        copy = Device(self.cedev, str(self.work / f"copy {name}"))
        copy.call("create", str(profile))
        return copy


def run_all(kind, says):
    """The command line CEDEV PROGRAMS TOLVENAR SEED..., each seed with a folder of its own."""
    cedev, programs, tolvenar, *seeds = sys.argv[1:]
    for seed in seeds:
        with tempfile.TemporaryDirectory() as work:
            try:
                kind(cedev, programs, tolvenar, seed, pathlib.Path(work)).run()
            except (Wrong, RuntimeError) as wrong:
                sys.exit(f"device {seed}: {wrong}")
        print(f"device {seed}: {says}", flush=True)
