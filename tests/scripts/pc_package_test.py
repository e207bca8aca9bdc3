#!/usr/bin/env python3
"""pc_package_test.py BUILD: makes the Debian package of the program for the PC, unpacks it and uses what is in it."""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv.pop())
STORAGE = ROOT / "tests/data/three_states/Home"
FILES = {"bin/tolvenar", "share/man/man1/tolvenar.1", "share/bash-completion/completions/tolvenar",
         "share/zsh/vendor-completions/_tolvenar", "share/fish/vendor_completions.d/tolvenar.fish",
         "share/doc/tolvenar/manual.md", "share/doc/tolvenar/json.md"}


def run(*command, **more):
    return subprocess.run([str(c) for c in command], check=True, capture_output=True, text=True, **more).stdout


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.made = pathlib.Path(cls.folder.name)
        run("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", cls.made)
        cls.package, = cls.made.glob("*.deb")
        run("dpkg-deb", "-x", cls.package, cls.made / "root")
        cls.usr = cls.made / "root/usr"
        cls.program = cls.usr / "bin/tolvenar"

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def commands(self):
        lines = run(self.program, "--help").split("Subcommands:")[1].splitlines()
        return {line.split()[0] for line in lines if line.startswith("  ") and line[2] != " "}

    def complete(self, *words):
        script = f'. "{self.usr}/share/bash-completion/completions/tolvenar"; ' \
                 f'COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tolvenar; printf "%s\\n" "${{COMPREPLY[@]}}"'
        return set(run("bash", "-c", script, "bash", "tolvenar", *words, cwd=STORAGE.parent).split())

    def test_holds_what_is_installed_and_nothing_else(self):
        listed = {line.split("./usr/")[1] for line in run("dpkg-deb", "-c", self.package).splitlines()
                  if not line.endswith("/")}
        self.assertEqual(FILES, listed)

    def test_says_what_it_needs(self):
        self.assertIn("libc6", run("dpkg-deb", "-f", self.package, "Depends"))
        self.assertEqual("tolvenar", run("dpkg-deb", "-f", self.package, "Package").strip())

    def test_the_program_runs(self):
        version = run("dpkg-deb", "-f", self.package, "Version").strip()
        self.assertEqual(f"tolvenar {version}\n", run(self.program, "--version"))
        self.assertIn("No errors were found.", run(self.program, "verify", STORAGE))

    def test_the_manual_page_tells_of_every_command_and_option(self):
        page = self.usr / "share/man/man1/tolvenar.1"
        told = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-P", "cat", page], check=True, capture_output=True,
                              text=True, env={"PATH": "/usr/bin:/bin", "MANWIDTH": "100", "LC_ALL": "C.UTF-8"})
        self.assertEqual("", told.stderr)
        for command in self.commands():
            self.assertIn(f"tolvenar {command}", told.stdout)
            self.assertIn(f"Example: tolvenar {command}", told.stdout)
        for option in ("--json", "--keep-monthly VALUE", "-o, --output VALUE", "--dry-run"):
            self.assertIn(option, told.stdout)
        self.assertNotIn("describe", told.stdout)

    def test_bash_completes_commands_options_and_files(self):
        self.assertEqual(self.commands() | {"--help"}, self.complete(""))
        self.assertEqual({"verify"}, self.complete("ver"))
        self.assertEqual({"--json"}, self.complete("verify", "--j"))
        self.assertEqual({"--keep", "--keep-last", "--keep-daily", "--keep-monthly"}, self.complete("trim", "Home.sav", "--k"))
        self.assertIn("Home.sav", self.complete("verify", "Ho"))

    @unittest.skipUnless(shutil.which("zsh"), "no zsh")
    def test_zsh_takes_its_completion(self):
        run("zsh", "-n", self.usr / "share/zsh/vendor-completions/_tolvenar")

    @unittest.skipUnless(shutil.which("fish"), "no fish")
    def test_fish_takes_its_completion(self):
        script = f'source {self.usr}/share/fish/vendor_completions.d/tolvenar.fish; complete -C "tolvenar ver"'
        self.assertIn("verify", run("fish", "-c", script))


unittest.main()
