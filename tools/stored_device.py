"""A device whose storage the program for the PC reads. Used by device_exports and device_new_pairs."""
import json
import pathlib
import random
import subprocess
import sys
import tempfile

from device_story import CARD, OWN_KEY, Device
from random_device import RandomDevice

STORAGE = CARD + "\\Tolvenar\\Backup"
STATES = 3
CHANGES = 12
INCOMPLETE = 3  # nothing but what no storage has is left out
TOOLS = pathlib.Path(__file__).parent

# What exports could tell wrong: data without an end, odd types and lengths, letters of no code page, units that are no
# text, quotes and backslashes.
ODD_KEYS = ("HKCU\\Software\\Odd", "HKLM\\Software\\\u0436\u0443\u043a", "HKCR\\a]b", "HKCU\\Software\\caf\u00e9 \u20ac")
ODD_VALUES = (("", "REG_SZ", "the default"), ("multi", "REG_MULTI_SZ", "61000000620000000000"), ("no end", "1", "4100"),
              ("odd end", "1", "410000"), ("two ends", "1", "4100000000000000"), ("empty", "1", ""), ("lone", "1", "00d80000"),
              ("line", "1", "41000d000a0042000000"), ("\u0436\u0443\u043a", "REG_SZ", "\u0436\u0443\u043a \u20ac"),
              ("\u20ac", "REG_SZ", "5 \u20ac"), ("type", "74565", "00ff"), ("short", "4", "0102"), ("long", "4", "0102030405"),
              ("number", "REG_DWORD", "4294967295"), ("expand", "REG_EXPAND_SZ", "%a%"), ("back\\slash", "REG_SZ", "c:\\d\\"),
              ("much", "REG_BINARY", "0123456789abcdef" * 100), ("nothing", "REG_BINARY", ""))
ODD_FILES = ("\u0436\u0443\u043a.txt", "\U0001f600.dat", "a, b; c.txt", "no extension", "x" * 150 + ".bin", "caf\u00e9 \u20ac.doc")
ODD_PROPERTIES = ((0x00010002, "ffff"), (0x00020003, "00000080"), (0x00030005, "182d4454fb210940"), (0x0004000b, "01000000"),
                  (0x00050012, "ffff"), (0x00060013, "ffffffff"), (0x0007001f, "00d8"), (0x0008001f, "3dd800de"), (0x0009001f, ""),
                  (0x000a0040, "0000000000000000"), (0x000b0041, ""), (0x000c0041, "00" * 100), (0x000d001f, "36040a00"))
ODD_ORDERS = ((0x00060013, 0), (0x00060013, 1), (0x0008001f, 2))


class Wrong(Exception):
    pass


def demand(holds, what):
    if not holds:
        raise Wrong(what)


NOT_STORED = 0x2040  # in ROM


# What the system itself rewrites all the time.
EXCLUDED_FILES = ("\\Windows\\wince.nls", "\\Windows\\Activesync\\SchedSync.dat")
EXCLUDED_NAMES = ("Storage.bkp", "Journal.bkp", "Journal1.bkp", "Recycled", "new_expl.exe")
EXCLUDED_KEYS = ("Drivers\\Active", "Comm\\Tcpip\\Hosts\\ppp_peer")
EXCLUDED_VALUES = (("HKLM\\Comm\\SecurityProviders\\SCHANNEL", "Seed"), ("HKLM\\Comm\\SecurityProviders\\SCHANNEL", "RNG"),
                   ("HKCU\\Software\\Microsoft\\AirSync\\Connection", "LastAutoSyncTime"),
                   ("HKLM\\SOFTWARE\\Microsoft\\Shell\\Rai\\:MSSHELL32", "4"))


def is_taken_file(file):
    path = file["path"]
    return not ((path + "\\").startswith((CARD + "\\", "\\Recycled")) or file["attributes"] & NOT_STORED
                or path in EXCLUDED_FILES or path.rsplit("\\", 1)[1] in EXCLUDED_NAMES)


def is_taken_key(key):
    return not (key.startswith(OWN_KEY) or key.startswith("HKLM") and any(part in key for part in EXCLUDED_KEYS))


def taken(dump):
    """What of a dump a backup takes, but for what the program itself changes while it runs."""
    registry = [{"key": k["key"], "values": [v for v in k["values"] if (k["key"], v["name"]) not in EXCLUDED_VALUES]}
                for k in dump["registry"] if is_taken_key(k["key"])]
    return {"files": [f for f in dump["files"] if is_taken_file(f)], "registry": registry,
            "databases": [d for d in dump["databases"] if "\\RecycleInfo" not in d["name"]]}


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
            self.add_odd_objects()
        self.device.call("install", self.programs)

    def add_odd_objects(self):
        choice = random.Random(f"odd {self.seed}")
        for name, kind, data in choice.sample(ODD_VALUES, 12):
            self.device.call("reg-set", choice.choice(ODD_KEYS), name, kind, data)
        for name in choice.sample(ODD_FILES, 3):
            self.device.call("put", self.random.content(), "\\My Documents\\" + name)
        records = [{"props": [{"propid": propid, "flags": 0, "value": value}
                              for propid, value in choice.sample(ODD_PROPERTIES, choice.randrange(1, 13))]} for _ in range(6)]
        order, flags = choice.choice(ODD_ORDERS)
        database = {"name": "\u0416\u0443\u043a \\odd", "type": choice.randrange(2**32), "flags": 0,
                    "sortOrders": [{"propid": order, "flags": flags}], "records": records}
        self.device.call("db-import", self.random.host_file(json.dumps(database).encode()))

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
