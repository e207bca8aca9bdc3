"""Writes the file with which a Windows CE package begins, NAME.000: what goes where on the device.

A path is a list of numbers of strings. Every list begins with its count, which stands in the header.
"""
import struct

HEADER = 100
ROOTS = {"HKCR": 1, "HKCU": 2, "HKLM": 3, "HKU": 4}
KEEP_EXISTING = 0x00000002
NUMBER = 0x00010001
TEXT = 0x00000000
LINK_TO_FILE = 1


def text(value):
    return value.encode("cp1252") + b"\0"


class SetupFile:
    def __init__(self):
        self._strings = {}

    def _path(self, path):
        numbers = [self._strings.setdefault(part, len(self._strings) + 1) for part in path.split("\\") if part]
        return struct.pack(f"<{len(numbers) + 1}H", *numbers, 0)

    def _folders(self, folders):
        for number, folder in enumerate(folders, 1):
            path = self._path(folder)
            yield struct.pack("<HH", number, len(path)) + path

    @staticmethod
    def _files(files, folders):
        for number, (folder, name) in enumerate(files, 1):
            row = struct.pack("<HHHIH", number, folders.index(folder) + 1, number, 0, len(text(name)))
            yield row + text(name)

    def _keys(self, keys):
        for number, key in enumerate(keys, 1):
            root, _, rest = key.partition("\\")
            path = self._path(rest)
            yield struct.pack("<HHHH", number, ROOTS[root], 0, len(path)) + path

    @staticmethod
    def _values(values, keys):
        for number, (key, name, value) in enumerate(values, 1):
            is_number = isinstance(value, int)
            body = text(name) + (struct.pack("<I", value) if is_number else text(value))
            flags = (NUMBER if is_number else TEXT) | KEEP_EXISTING
            has_folder = not is_number and "%" in value
            yield struct.pack("<HHHIH", number, keys.index(key) + 1, has_folder, flags, len(body)) + body

    def _links(self, links, files):
        for number, (folder, name, target) in enumerate(links, 1):
            path = self._path(name)
            yield struct.pack("<HHHHHH", number, 0, folder, files.index(target) + 1, LINK_TO_FILE, len(path)) + path

    def build(self, name, provider, processor, version, files, values, links):
        """files: (folder, name), the folder of the installation first. values: (key, name, text or number).
        links: (number of the system's folder, name, entry of files)."""
        folders = list(dict.fromkeys(folder for folder, _ in files))
        keys = list(dict.fromkeys(key for key, _, _ in values))
        lists = [list(self._folders(folders)), list(self._files(files, folders)), list(self._keys(keys)),
                 list(self._values(values, keys)), list(self._links(links, files))]
        lists.insert(0, [struct.pack("<HH", n, len(text(s))) + text(s) for s, n in self._strings.items()])
        names = [text(name), text(provider)]
        parts = names + [b"".join(rows) for rows in lists]
        places = [HEADER + sum(map(len, parts[:i])) for i in range(len(parts))]
        length = HEADER + sum(map(len, parts))
        header = struct.pack("<4sIIIII", b"MSCE", 0, length, 0, 1, processor)
        header += struct.pack("<6I", *version, 0, 0, 0, 0)  # oldest version; no newest; no builds
        header += struct.pack("<6H", *map(len, lists))
        header += struct.pack("<6I", *places[2:])
        header += struct.pack("<8H", places[0], len(names[0]), places[1], len(names[1]), places[2], 0, 0, 0)
        return header + b"".join(parts)
