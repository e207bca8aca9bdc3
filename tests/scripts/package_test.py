#!/usr/bin/env python3
"""package_test.py CPU PROGRAMS: makes a package and reads it as a device's loader does, with a reader of its own."""
import json
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
CPU, PROGRAMS = sys.argv[1], pathlib.Path(sys.argv[2])
PROCESSORS = {"arm": 2577, "mips": 4000, "x86": 586}
MANUAL = {"tolvenar.htc", "tolvenar_all.htp", "tolvenar_backup.2bp", "tolvenar_options.2bp", "tolvenar_restore.2bp",
          "tolvenar_storage_file.2bp", "tolvenar_tree_failed.2bp", "tolvenar_tree_simple.2bp"}
OWN = {"Tolvenar.exe", "kestrin_tolvenar_agent.exe", "CloseOther.exe", "tolvenar.ico"}
HIVES = {1: "HKCR", 2: "HKCU", 3: "HKLM", 4: "HKU"}


class Setup:
    """What NAME.000 says."""

    def __init__(self, data):
        self.data = data
        head = struct.unpack_from("<4sIIIII6I6H6I8H", data)
        self.signature, self.length, self.processor = head[0], head[2], head[5]
        self.version, counts, places = head[6:8], head[12:18], head[18:24]
        name, name_bytes, provider, provider_bytes = head[24:28]
        self.name, self.provider = self.text(name, name_bytes), self.text(provider, provider_bytes)
        rows = [self.rows(place, count, form) for place, count, form in zip(places, counts, self.FORMS)]
        strings, folders, files, keys, values, links = rows
        self.strings = {row[0]: body[:-1].decode("cp1252") for row, body in strings}
        self.folders = {row[0]: self.path(body) for row, body in folders}
        self.files = {row[0]: (self.folders[row[1]], row[2], body[:-1].decode()) for row, body in files}
        self.keys = {row[0]: HIVES[row[1]] + "\\" + self.path(body) for row, body in keys}
        self.values = [self.value(row, body) for row, body in values]
        self.links = [(row[2], row[3], row[4], self.path(body)) for row, body in links]

    # A row's fixed part, which ends with the length of what follows.
    FORMS = ("<HH", "<HH", "<HHHIH", "<HHHH", "<HHHIH", "<HHHHHH")

    def rows(self, at, count, form):
        found = []
        for _ in range(count):
            row = struct.unpack_from(form, self.data, at)
            at += struct.calcsize(form)
            found.append((row, self.data[at:at + row[-1]]))
            at += row[-1]
        return found

    def text(self, at, length):
        return self.data[at:at + length - 1].decode("cp1252")

    def path(self, body):
        numbers = [n for (n,) in struct.iter_unpack("<H", body)]
        assert numbers[-1] == 0
        return "\\".join(self.strings[n] for n in numbers[:-1])

    def value(self, row, body):
        _, key, has_folder, flags, _ = row
        name, _, data = body.partition(b"\0")
        content = struct.unpack("<I", data)[0] if flags & 0x10001 == 0x10001 else data[:-1].decode("cp1252")
        return self.keys[key], name.decode(), content, bool(has_folder), flags


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        work = pathlib.Path(cls.folder.name)
        subprocess.run([ROOT / "tools/ce/make_package", CPU, PROGRAMS, work], check=True)
        cls.cab, cls.plain = work / f"Tolvenar-{CPU}.cab", work / CPU
        subprocess.run(["cabextract", "--quiet", "--directory", work / "out", cls.cab], check=True,
                       stdout=subprocess.DEVNULL)
        cls.parts = {p.suffix: p.read_bytes() for p in (work / "out").iterdir()}
        cls.setup = Setup(cls.parts[".000"])

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_another_reader_accepts_the_cabinet(self):
        subprocess.run(["cabextract", "--quiet", "--test", self.cab], check=True, stdout=subprocess.DEVNULL)

    def test_the_head_names_program_processor_and_system(self):
        self.assertEqual(b"MSCE", self.setup.signature)
        self.assertEqual(len(self.setup.data), self.setup.length)
        self.assertEqual(("Tolvenar", "Kestrin"), (self.setup.name, self.setup.provider))
        self.assertEqual(PROCESSORS[CPU], self.setup.processor)
        self.assertEqual((2, 11), self.setup.version)

    def test_every_file_goes_where_it_belongs(self):
        where = {}
        for folder, _, name in self.setup.files.values():
            where.setdefault(folder, set()).add(name)
        self.assertEqual({"%CE1%\\Tolvenar": OWN, "%CE2%": MANUAL | {"kestrin_tolvenar_agent.exe"}}, where)

    def test_the_help_viewer_is_the_systems_own(self):
        self.assertNotIn("peghelp.exe", {name for _, _, name in self.setup.files.values()})
        self.assertFalse((self.plain / "peghelp.exe").exists())

    def test_each_part_is_the_file_that_was_built(self):
        for _, number, name in self.setup.files.values():
            source = ROOT / "res/tolvenar.ico" if name == "tolvenar.ico" else PROGRAMS / name
            self.assertEqual(source.read_bytes(), self.parts[f".{number:03d}"], name)
            self.assertEqual(source.read_bytes(), (self.plain / name).read_bytes(), name)

    def test_values_are_those_of_an_installation_and_none_is_overwritten(self):
        key = "HKCU\\Software\\Kestrin2\\Tolvenar"
        expected = {"InstDir": "%CE1%\\Tolvenar", "StoragePath": "\\Storage Card\\Tolvenar\\", "StorageFile": "Backup",
                    "onTime": 0, "onBattery": 0, "WakeUpTime": 0}
        self.assertEqual(expected, {name: content for _, name, content, _, _ in self.setup.values})
        for where, name, content, has_folder, flags in self.setup.values:
            self.assertEqual(key, where)
            self.assertEqual(name == "InstDir", has_folder)
            self.assertEqual(0x10003 if isinstance(content, int) else 0x2, flags, name)

    def test_the_shortcuts_lead_to_the_program(self):
        program = next(n for n, row in self.setup.files.items() if row[2] == "Tolvenar.exe")
        self.assertEqual([(11, program, 1, "Tolvenar.lnk"), (3, program, 1, "Tolvenar.lnk")], self.setup.links)


class InstallationTest(unittest.TestCase):
    """The package on a simulated device."""

    APP = "Kestrin Tolvenar"
    KEY = "HKCU\\Software\\Kestrin2\\Tolvenar"

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work = pathlib.Path(folder.name)
        subprocess.run([ROOT / "tools/ce/make_package", CPU, PROGRAMS, self.work], check=True)
        self.cab = str(self.work / f"Tolvenar-{CPU}.cab")
        self.tell("set", "processor", str(PROCESSORS[CPU]))

    def call(self, *words, device="device"):
        return subprocess.run([ROOT / "scripts/cedev", self.work / device, *words], capture_output=True, text=True)

    def tell(self, *words, device="device"):
        result = self.call(*words, device=device)
        self.assertEqual(0, result.returncode, result.stderr)
        return json.loads(result.stdout)

    def files(self, device="device"):
        return {f["path"]: f.get("sha256") for f in self.tell("dump", device=device)["files"] if "sha256" in f}

    def values(self, device="device"):
        return {v["name"]: v["data"] for k in self.tell("dump", device=device)["registry"] if k["key"] == self.KEY
                for v in k["values"]}

    def test_it_comes_to_what_an_installation_is(self):
        self.assertEqual({"app": self.APP}, self.tell("install-cab", self.cab))
        self.tell("install", str(PROGRAMS), device="other")
        self.assertEqual(self.values("other"), self.values())
        expected = {path: sha for path, sha in self.files("other").items() if not path.endswith("peghelp.exe")}
        found = self.files()
        self.assertEqual(expected, {path: found.get(path) for path in expected})
        extra = {"\\Program Files\\Tolvenar\\tolvenar.ico", "\\Windows\\Programs\\Tolvenar.lnk",
                 "\\Windows\\Desktop\\Tolvenar.lnk", f"\\Windows\\{self.APP}.unload"}
        self.assertEqual(extra, found.keys() - expected.keys())

    def test_the_shortcut_starts_the_program(self):
        self.tell("install-cab", self.cab)
        copy = self.work / "shortcut"
        self.tell("get", "\\Windows\\Programs\\Tolvenar.lnk", str(copy))
        self.assertEqual('38#"\\Program Files\\Tolvenar\\Tolvenar.exe"', copy.read_text())

    def test_settings_that_are_there_stay(self):
        self.tell("reg-set", self.KEY, "StorageFile", "REG_SZ", "Mine")
        before = self.values()
        self.tell("install-cab", self.cab)
        self.assertEqual(before["StorageFile"], self.values()["StorageFile"])

    def test_a_second_installation_another_processor_and_an_older_system_are_refused(self):
        self.tell("set", "processor", "1")
        self.assertIn("another processor", self.call("install-cab", self.cab).stderr)
        self.tell("set", "processor", str(PROCESSORS[CPU]))
        self.tell("set", "os.version", "2.10")
        self.assertIn("newer system", self.call("install-cab", self.cab).stderr)
        self.assertEqual({}, self.files())
        self.tell("set", "os.version", "2.11")
        self.tell("install-cab", self.cab)
        self.assertIn("already installed", self.call("install-cab", self.cab).stderr)

    def test_a_removal_leaves_storages_and_log(self):
        self.tell("install-cab", self.cab)
        kept = ["\\Storage Card\\Tolvenar\\" + name for name in ("Backup.sav", "Backup.jrn", "tolvenar_log.txt")]
        for path in kept:
            self.tell("put", self.cab, path)
        self.tell("remove-app", self.APP)
        self.assertEqual(set(kept), self.files().keys())
        self.assertEqual({}, self.values())
        self.tell("install-cab", self.cab)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
