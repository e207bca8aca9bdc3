"""A device that a seed chooses, and what other programs do on it. Used by random_use."""
import json
import random

OWN_KEY = "HKCU\\Software\\Kestrin2\\Tolvenar"
KEYS = ("HKCU\\Software\\Random", "HKLM\\Software\\Apps\\Planner", "HKCR\\.txt", "HKLM\\Ident", "HKCU\\Software\\Bj\u00f6rk")
FOLDERS = ("\\My Documents", "\\My Documents\\Private", "\\My Documents\\caf\u00e9", "\\Program Files\\Planner", "\\Temp files")
# The types of database properties: 16 bits, 32 bits, a text, a time.
PROPERTIES = ((2, 4), (19, 8), (31, None), (64, 16))


class RandomDevice:
    """Commands of cedev; every choice follows from the seed. Host files go into the folder WORK."""

    def __init__(self, seed, work):
        self.random, self.work, self.written = random.Random(f"device {seed}"), work, 0

    def host_file(self, text):
        self.written += 1
        path = self.work / f"{self.written}.bin"
        path.write_bytes(text)
        return str(path)

    def content(self):
        size = self.random.choice((0, 1, 31, 700, 4096, 20000))
        return self.host_file(self.random.randbytes(size))

    def path(self):
        return f"{self.random.choice(FOLDERS)}\\note {self.random.randrange(6)}.txt"

    def value(self):
        kind, data = self.random.choice((("REG_SZ", "some text"), ("REG_SZ", ""), ("REG_DWORD", "7"),
                                         ("REG_BINARY", "00ff10"), ("REG_DWORD", str(self.random.randrange(9)))))
        return ["reg-set", self.random.choice(KEYS), f"value {self.random.randrange(6)}", kind, data]

    def records(self):
        return [{"props": [self.property(number) for number in range(self.random.randrange(1, 4))]}
                for _ in range(self.random.randrange(5))]

    def property(self, number):
        kind, digits = self.random.choice(PROPERTIES)
        value = "41004200" if digits is None else self.random.randbytes(digits // 2).hex()
        return {"propid": (0x4000 + number) << 16 | kind, "flags": 0, "value": value}

    def database(self):
        name, number = self.random.choice((("Contacts Database", 24), ("Tasks Database", 25), ("Rainfall", 99)))
        text = json.dumps([{"name": name, "type": number, "flags": 0, "sortOrders": [], "records": self.records()}])
        return ["db-import", self.host_file(text.encode())]

    def fill(self):
        """The device as it is before the first backup."""
        commands = [["mkdir", folder] for folder in ("\\Program Files", *FOLDERS)]
        for index in range(25):
            path = f"{self.random.choice(FOLDERS)}\\file {index}.dat"
            commands.append(["put", self.content(), path])
            if self.random.random() < 0.3:
                commands.append(["attr", path, str(self.random.choice((1, 2, 3, 33)))])
        return commands + [self.value() for _ in range(25)] + [self.database() for _ in range(3)]

    def change(self):
        """One change. It may fail: what is to go may not be there, or be held."""
        return self.random.choice((
            lambda: ["put", self.content(), self.path()], lambda: ["put", self.content(), self.path()],
            lambda: ["rm", self.path()], lambda: ["mkdir", f"{self.random.choice(FOLDERS)}\\folder"],
            lambda: ["rm", f"{self.random.choice(FOLDERS)}\\folder"], self.value, self.value,
            lambda: ["reg-delete", self.random.choice(KEYS), f"value {self.random.randrange(6)}"],
            lambda: ["reg-delete", self.random.choice(KEYS)], self.database,
            lambda: ["lock", self.path(), self.random.choice(("none", "read"))]))()
