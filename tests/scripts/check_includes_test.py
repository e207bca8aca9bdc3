#!/usr/bin/env python3
"""Seeds one violation of each kind into a small tree and sees scripts/check_includes fail on it."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "scripts/check_includes"
ROOMS = """# the list
low/bytes   bytes                          | lists
platform    device                         | handles
low/device  device    low/bytes platform   | files
high        device    low/bytes low/device | windows
simulator/low   host                       | the store
simulator/high  host      platform simulator/low | the commands
"""
FILES = {
    "low/bytes/list.h": "#pragma once\n",
    "low/bytes/list.cpp": '#include "low/bytes/list.h"\n',
    "platform/handle.h": "#include <windows.h>\n",
    "low/device/file.cpp": '#include "low/bytes/list.h"\n#include "platform/handle.h"\n',
    "low/device/file.h": "#pragma once\n",
    "high/window.cpp": '#include "low/bytes/list.h"\n#include "low/device/file.h"\n',
    "simulator/low/device.h": "#pragma once\n",
    "simulator/high/command.cpp": '#include "platform/handle.h"\n#include "simulator/low/device.h"\n',
    "simulator/high/command.h": "#pragma once\n",
    "docs/architecture.md": "<!-- rooms -->\n<!-- /rooms -->\n",
}


class SeededViolation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.write("cmake/rooms.txt", ROOMS)
        for name, text in FILES.items():
            self.write(name, text)
        self.check("--fix")

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def add(self, name, text):
        path = self.root / name
        self.write(name, (path.read_text(encoding="utf-8") if path.exists() else "") + text)

    def change_rooms(self, old, new):
        self.assertIn(old, ROOMS)
        self.write("cmake/rooms.txt", ROOMS.replace(old, new))

    def check(self, *arguments):
        run = subprocess.run([sys.executable, CHECK, "--root", self.root, *arguments], text=True,
                             stdout=subprocess.PIPE, check=False)
        return run.returncode, run.stdout

    def assert_fails_with(self, problem):
        status, told = self.check()
        self.assertEqual(1, status)
        self.assertIn(problem, told)

    def test_a_tree_of_layers_passes(self):
        self.assertEqual((0, ""), self.check())

    def test_an_upward_include_fails(self):
        self.write("high/window.h", "")
        self.add("low/device/file.cpp", '#include "high/window.h"\n')
        self.assert_fails_with("low/device does not name that room")

    def test_an_include_of_a_lower_room_that_is_not_named_fails(self):
        self.add("high/window.cpp", '#include "platform/handle.h"\n')
        self.assert_fails_with("high does not name that room")

    def test_a_room_that_names_a_higher_one_fails(self):
        self.change_rooms("low/device  device    low/bytes platform", "low/device  device  low/bytes high")
        self.assert_fails_with("low/device needs high, which does not stand above it")

    def test_a_room_that_is_named_for_nothing_fails(self):
        self.change_rooms("low/bytes low/device", "low/bytes low/device platform")
        self.assert_fails_with("high names platform and includes nothing of it")

    def test_bytes_that_need_a_room_of_the_platform_fail(self):
        self.change_rooms("platform    device", "platform    bytes")
        self.assert_fails_with("platform/handle.h works on bytes and includes a platform header")
        self.change_rooms("low/device  device ", "low/device  bytes  ")
        self.assert_fails_with("low/device works on bytes and needs platform")

    def test_a_platform_header_among_bytes_fails(self):
        self.add("low/bytes/list.h", "#include <commctrl.h>\n")
        self.assert_fails_with("low/bytes/list.h works on bytes and includes a platform header")

    def test_a_source_outside_all_rooms_fails(self):
        self.write("low/other/new.cpp", "")
        self.assert_fails_with("low/other/new.cpp lies in no room")
        (self.root / "low/other/new.cpp").unlink()
        self.write("low/new.cpp", "")
        self.assert_fails_with("low/new.cpp lies in no room")

    def test_an_include_of_the_simulator_fails(self):
        self.add("high/window.cpp", '#include "simulator/low/device.h"\n')
        self.assert_fails_with("high/window.cpp knows the simulator")

    def test_an_upward_include_of_the_simulator_fails(self):
        self.add("simulator/low/device.h", '#include "simulator/high/command.h"\n')
        self.assert_fails_with("simulator/low does not name that room")

    def test_a_room_of_the_program_that_names_the_simulator_fails(self):
        self.write("cmake/rooms.txt", ROOMS + "top  device  simulator/low | pages\n")
        self.write("top/page.cpp", '#include "simulator/low/device.h"\n')
        self.assert_fails_with("top/page.cpp knows the simulator")

    def test_the_pcs_program_needs_what_works_on_bytes_and_is_needed_by_nobody_else(self):
        self.write("pc/reader.cpp", '#include "platform/handle.h"\n')
        self.write("cmake/rooms.txt", ROOMS + "pc  pc  platform | reading\n")
        self.assert_fails_with("pc builds natively alone and needs platform, which does not")
        self.write("pc/reader.cpp", '#include "low/bytes/list.h"\n')
        self.write("pc/reader.h", "")
        self.write("top/page.cpp", '#include "pc/reader.h"\n')
        self.write("cmake/rooms.txt", ROOMS + "pc  pc  low/bytes | reading\ntop  device  pc | pages\n")
        self.assert_fails_with("top needs pc, which only the PC's program has")

    def test_a_cycle_fails(self):
        self.write("high/a.h", '#include "high/b.h"\n')
        self.write("high/b.h", '#include "high/a.h"\n')
        self.assert_fails_with("cycle: high/a.h -> high/b.h -> high/a.h")

    def test_a_document_with_other_rooms_fails(self):
        self.write("docs/architecture.md", "<!-- rooms -->\nold\n<!-- /rooms -->\n")
        self.assert_fails_with("docs/architecture.md")


if __name__ == "__main__":
    unittest.main()
