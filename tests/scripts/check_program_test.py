#!/usr/bin/env python3
"""check_program_test.py CPU EXE CODE OBJDUMP: seeds one fault of each kind into a program that was built for a device
and sees tools/ce/check_program name it."""
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools/ce"))
from pe import DIRECTORY_IMPORT, DIRECTORY_RELOCATION, Pe

CPU, EXE, CODE, OBJDUMP = sys.argv[1:]
VERSIONS = (ROOT / "platform/versions.txt").read_text()
BY_ORDINAL = 0x80000000
MIPS16 = 0x266

# Where a field stands behind "PE\0\0", its form, a wrong value and what is to be said of it.
HEADER_SEEDS = {
    "machine": (4, "<H", MIPS16, "machine 614, not"),
    "flags": (22, "<H", 0x10E, "flag of stripped relocations 0, not 1"),
    "entry": (40, "<I", 0, "the entry point is in no code"),
    "base": (52, "<I", 0x400000, "base 4194304, not 65536"),
    "version": (72, "<HH", (3, 0), "version (3, 0), not (2, 11)"),
    "subsystem": (92, "<H", 2, "subsystem 2, not 9"),
    "stack": (96, "<I", 0x100000, "stack 1048576, not 65536"),
    "relocations": (120 + 8 * DIRECTORY_RELOCATION + 4, "<I", 12, "relocations 12, not 0"),
}
# Instructions that came after the oldest processors, as their bytes in the program.
LATER = {
    "arm": {"blx": "30ff2fe1", "bx": "1eff2fe1", "clz": "110f6fe1", "ldrd": "d020c0e1", "ldrex": "9f0f91e1"},
    "mips": {"ll": "000082c0", "sc": "000082e0", "movz": "0a106400", "mul": "02106470", "pref": "000080cc",
             "add.s": "00000246", "ld": "000082dc"},
    "x86": {"cmovne": "0f45c1", "rdtsc": "0f31", "cmpxchg8b": "0fc70e", "movd": "0f6ec0", "xorps": "0f57c0",
            "sysenter": "0f34"},
}


def put(data, at, form, value):
    struct.pack_into(form, data, at, *(value if isinstance(value, tuple) else (value,)))


class SeededFault(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.exe, self.code = bytearray(pathlib.Path(EXE).read_bytes()), bytearray(pathlib.Path(CODE).read_bytes())
        self.versions = VERSIONS
        self.pe = Pe(bytes(self.exe))
        self.head, = struct.unpack_from("<I", self.exe, 0x3C)

    def check(self):
        files = [("exe", self.exe), ("code", self.code), ("versions", self.versions.encode())]
        for name, data in files:
            (self.folder / name).write_bytes(data)
        run = subprocess.run([ROOT / "tools/ce/check_program", CPU, self.folder / "exe", self.folder / "code", OBJDUMP,
                              self.folder / "versions"], text=True, stdout=subprocess.PIPE, check=False)
        return run.returncode, run.stdout

    def assert_fails_with(self, problem):
        status, told = self.check()
        self.assertEqual(1, status, told)
        self.assertIn(problem, told)
        self.assertEqual(1, len(told.splitlines()), told)

    def offset(self, rva):
        section = next(s for s in self.pe.sections if s.holds(rva))
        return self.exe.index(section.body) + rva - section.rva

    def first_import(self):
        """Its DLL's name and its own, and where in the file the first DLL's name and the first row of names stand."""
        row = self.offset(self.pe.directory(DIRECTORY_IMPORT)[0])
        names, = struct.unpack_from("<I", self.exe, row)
        dll, = struct.unpack_from("<I", self.exe, row + 12)
        found = next(iter(self.pe.imports().items()))
        return found[0], found[1][0], self.offset(dll), self.offset(names)

    def give_version(self, name, version):
        rows = [line for line in self.versions.splitlines() if line.split()[:1] != [name]]
        self.versions = "\n".join([*rows, f"{name} {version}" if version else ""])

    def test_the_program_as_it_was_built_passes(self):
        self.assertEqual((0, ""), self.check())

    def test_a_header_that_no_loader_takes_fails(self):
        for name, (at, form, value, problem) in HEADER_SEEDS.items():
            with self.subTest(name):
                self.exe = bytearray(pathlib.Path(EXE).read_bytes())
                put(self.exe, self.head + at, form, value)
                self.assert_fails_with(problem)

    def test_an_import_from_another_dll_fails(self):
        dll, _, place, _ = self.first_import()
        self.exe[place:place + len(dll)] = b"k" * len(dll)
        self.assert_fails_with("imports " + "k" * len(dll))

    def test_an_import_by_number_fails(self):
        dll, _, _, place = self.first_import()
        put(self.exe, place, "<I", BY_ORDINAL | 488)
        self.assert_fails_with(f"imports number 488 of {dll}, not a name")

    def test_an_import_that_no_list_has_fails(self):
        _, name, _, _ = self.first_import()
        self.give_version(name, None)
        self.assert_fails_with(f"imports {name}, which platform/versions.txt lacks")

    def test_an_import_that_is_too_new_fails(self):
        _, name, _, _ = self.first_import()
        for version in ("2.12", "3.0", "4.0"):
            with self.subTest(version):
                self.give_version(name, version)
                self.assert_fails_with(f"imports {name}, which begins with version {version}")

    def test_an_import_of_the_oldest_version_passes(self):
        _, name, _, _ = self.first_import()
        for version in ("1.0", "2.0", "2.10", "2.11"):
            with self.subTest(version):
                self.give_version(name, version)
                self.assertEqual((0, ""), self.check())

    # Such a name came later than the function that it extends.
    def test_an_import_with_ex_and_no_version_fails(self):
        _, name, _, place = self.first_import()
        row, = struct.unpack_from("<I", self.exe, place)
        at = self.offset(row) + 2
        changed = name[:-3] + "ExW"
        self.exe[at:at + len(name)] = changed.encode()
        self.give_version(changed, "?")
        self.assert_fails_with(f"imports {changed}, of which no version is known")

    def test_a_later_instruction_fails(self):
        start = self.pe.section(".text").body[:64]
        for mnemonic, code in LATER[CPU].items():
            with self.subTest(mnemonic):
                self.code = bytearray(pathlib.Path(CODE).read_bytes())
                at = self.code.index(start)
                self.code[at:at + len(code) // 2] = bytes.fromhex(code)
                self.assert_fails_with("1 instructions ")

    def test_a_file_without_code_fails(self):
        self.code = bytearray(pathlib.Path(CODE).read_bytes())
        short = self.folder / "short"
        short.write_text("#!/bin/sh\nprintf ' 11000:\\tnop\\n'\n")
        short.chmod(0o755)
        with unittest.mock.patch(f"{__name__}.OBJDUMP", str(short)):
            self.assert_fails_with("only 1 instructions found")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
