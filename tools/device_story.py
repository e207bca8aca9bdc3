"""What the demo does to a device, and how two dumps of one are compared. Used by ./run."""
import json
import subprocess

PROGRAM = "\\Program Files\\Tolvenar\\Tolvenar.exe"
CARD = "\\Storage Card"
OWN_KEY = "HKCU\\Software\\Kestrin2"


class Device:
    """A simulated device, driven through cedev."""

    def __init__(self, cedev, folder):
        self.cedev, self.folder = cedev, folder

    def call(self, *words):
        result = subprocess.run([self.cedev, self.folder, *words], capture_output=True, text=True)
        if result.returncode != 0:
            raise RuntimeError(f"{' '.join(words)}: {result.stdout.strip()} {result.stderr.strip()}")
        return json.loads(result.stdout) if result.stdout.strip() else None

    def script(self, lines):
        """Runs commands, each a list of words; every one must succeed."""
        text = "".join(" ".join(f'"{w}"' if " " in w or not w else w for w in words) + "\n" for words in lines)
        result = subprocess.run([self.cedev, self.folder, "-"], input=text, capture_output=True, text=True)
        if result.returncode != 0:
            raise RuntimeError(f"script: {result.stdout.strip()[-400:]} {result.stderr.strip()[-400:]}")

    def dump(self):
        return self.call("dump")

    def run(self, arguments):
        """Runs the program; its exit code."""
        return self.call("run", PROGRAM, arguments)["exit"]


def comparable(dump):
    """What a restore must bring back: no ids, not the card, not the program's own settings."""
    files = [{k: v for k, v in f.items() if k != "oid"} for f in dump["files"]
             if not (f["path"] + "\\").startswith(CARD + "\\")]
    registry = [k for k in dump["registry"] if not k["key"].startswith(OWN_KEY)]
    databases = [{"name": d["name"], "type": d["type"], "sortOrders": d["sortOrders"],
                  "records": sorted(json.dumps(r["props"], sort_keys=True) for r in d["records"])}
                 for d in dump["databases"]]
    return {"files": files, "registry": registry, "databases": databases}


def differences(before, after):
    """Lines that say where two comparable dumps differ."""
    lines = []
    for part, name in (("files", "path"), ("registry", "key"), ("databases", "name")):
        old = {entry[name]: entry for entry in before[part]}
        new = {entry[name]: entry for entry in after[part]}
        lines += [f"{part}: {n} is gone" for n in sorted(old.keys() - new.keys())]
        lines += [f"{part}: {n} is new" for n in sorted(new.keys() - old.keys())]
        lines += [f"{part}: {n} differs" for n in sorted(old.keys() & new.keys()) if old[n] != new[n]]
    return lines


def find(dump, text, count=1):
    """The first files whose path contains `text`."""
    paths = [f["path"] for f in dump["files"] if text in f["path"] and "sha256" in f]
    return paths[:count]


def changes(dump, host_file, databases_file):
    """Commands that change the device in every way there is."""
    business = find(dump, "\\My Documents\\Business\\", 6)
    personal = find(dump, "\\My Documents\\Personal\\", 3)
    contacts = next(d for d in dump["databases"] if d["name"] == "Contacts Database")
    with open(databases_file, "w", encoding="utf-8") as out:
        json.dump([dict(contacts, records=changed_records(contacts["records"])),
                   {"name": "Rainfall", "type": 99, "flags": 0, "sortOrders": [],
                    "records": [{"props": [{"propid": 0x00010003, "flags": 0, "value": "2a000000"}]}]}], out)
    commands = [["put", host_file, path] for path in business[:2]]            # files changed
    commands += [["rm", path] for path in business[2:4] + personal[:2]]       # deleted
    commands += [["put", host_file, "\\My Documents\\New letter.txt"],        # added
                 ["mkdir", "\\My Documents\\Projects"], ["mkdir", "\\My Documents\\Projects\\Bridge"],
                 ["put", host_file, "\\My Documents\\Projects\\Bridge\\plan.txt"],
                 ["rm", "\\My Documents\\Drafts"],                            # a folder deleted
                 ["mv", business[4], "\\My Documents\\Projects\\moved.txt"]]
    commands += [["rm", path] for path in find(dump, "\\Program Files\\Pocket Chess\\", 99)]
    commands += [["rm", "\\Program Files\\Pocket Chess"],
                 ["reg-set", "HKCU\\Software\\New Vendor\\Settings", "Greeting", "REG_SZ", "hello"],
                 ["reg-set", "HKLM\\Ident", "Desc", "REG_SZ", "A changed device"],
                 ["reg-set", "HKLM\\Ident", "Extra", "REG_DWORD", "7"],
                 ["reg-delete", "HKLM\\Software\\Apps\\Pocket Chess"],
                 ["reg-delete", "HKCR\\.pwd", "Content Type"],
                 ["db-delete", "Measurements"], ["db-import", databases_file]]
    return commands


def changed_records(records):
    """Without the first, the second changed, a new one behind."""
    new = [dict(r) for r in records[1:]]
    new[0] = {"props": [dict(p, value="41004200") if p["propid"] & 0xFFFF == 31 else p for p in new[0]["props"]]}
    return new + [{"props": [{"propid": 0x4013001F, "flags": 0, "value": "4e0065007700"}]}]


def damage(dump, host_file):
    """Commands after which the device needs its backup."""
    commands = [["rm", f["path"]] for f in dump["files"]
                if f["path"].startswith("\\My Documents\\Archive\\") and "sha256" in f]
    commands += [["rm", "\\My Documents\\Archive\\2025"], ["rm", "\\My Documents\\Archive\\2026"],
                 ["rm", "\\My Documents\\Archive"],
                 ["put", host_file, "\\Windows\\unwanted.exe"],
                 ["put", host_file, "\\My Documents\\Town map.bmp"],
                 ["reg-delete", "HKCU\\Software\\Vendor"],
                 ["reg-set", "HKLM\\Software\\Unwanted\\Run", "Now", "REG_SZ", "\\Windows\\unwanted.exe"],
                 ["db-delete", "Contacts Database"], ["db-delete", "\\PMAILDB"]]
    return commands
