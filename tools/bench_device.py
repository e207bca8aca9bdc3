"""A simulated device that benchmarks work: of so many files and registry values, with Tolvenar and the floor program."""
import json
import pathlib
import random
import subprocess
import sys
import time

FOLDER = "\\Program Files\\Tolvenar"
PROGRAM = FOLDER + "\\Tolvenar.exe"
FLOOR = FOLDER + "\\floor.exe"
BACKUP, RESTORE = "AutoBackup: External", "AutoRestore: Last State"
FILE_BYTES = 12_000
FILES_OF_A_FOLDER, VALUES_OF_A_KEY = 50, 10
SETTINGS = "memory.free = 134217728\nmemory.size = 268435456\nstore.size = 1073741824\nstore.free = 536870912\n"


def write_profile(folder, files, values):
    source = random.Random(1)
    for i in range(files):
        path = folder / "files" / "Bench" / f"Folder {i // FILES_OF_A_FOLDER:04d}" / f"file {i:05d}.dat"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(source.randbytes(FILE_BYTES))
    with open(folder / "registry.reg", "w", newline="\r\n") as registry:
        registry.write("REGEDIT4\n\n")
        for key in range(values // VALUES_OF_A_KEY):
            registry.write(f"[HKEY_LOCAL_MACHINE\\Software\\Bench\\Key {key:05d}]\n")
            registry.writelines(f'"Value {i}"="{source.getrandbits(160):x}"\n' for i in range(VALUES_OF_A_KEY))
            registry.write("\n")
    (folder / "device.ini").write_text(SETTINGS)


class Device:
    def __init__(self, cedev, folder, profile, programs):
        self.cedev, self.folder = cedev, folder
        self.ask("create", profile)
        self.ask("install", programs)
        floor = pathlib.Path(programs) / "floor.exe"
        if floor.exists():  # none is built for real devices
            self.ask("put", floor, FLOOR)

    def ask(self, *words, script=None):
        run = subprocess.run([self.cedev, self.folder, *map(str, words)], input=script, capture_output=True, text=True)
        if run.returncode != 0:
            sys.exit(f"{' '.join(map(str, words))}: {run.stdout} {run.stderr}")
        return [json.loads(line) for line in run.stdout.splitlines()]

    def seconds(self, program, arguments):
        """Of one run of the program, its start included."""
        start = time.monotonic()
        code = self.ask("run", program, arguments)[0]["exit"]
        if code != 0:
            sys.exit(f"{program} {arguments} ended with {code}")
        return time.monotonic() - start

    def cost(self, program, arguments):
        """Of one run: seconds, platform calls, and bytes of the heap at its peak."""
        self.ask("counters", "clear")
        seconds = self.seconds(program, arguments)
        counters = self.ask("counters")[0]
        peaks = [process["heapPeak"] for process in counters["processes"]]
        return {"s": seconds, "calls": sum(counters["calls"].values()), "bytes": max(peaks)}

    def remove_bench(self, files, values):
        """Takes away what the profile brought, so that a restore has all of it to write."""
        folders = -(-files // FILES_OF_A_FOLDER)
        script = [f'rm "\\Bench\\Folder {i // FILES_OF_A_FOLDER:04d}\\file {i:05d}.dat"' for i in range(files)]
        script += [f'rm "\\Bench\\Folder {i:04d}"' for i in range(folders)]
        script += ['rm "\\Bench"'] if files else []
        script += ['reg-delete "HKLM\\Software\\Bench"'] if values else []
        self.ask("-", script="\n".join(script) + "\n")
