"""Reads a PE program: header, sections, imports. Of the sections only what the file holds is there."""
import struct

DIRECTORY_IMPORT, DIRECTORY_RESOURCE, DIRECTORY_RELOCATION = 1, 2, 5
SECTION_CODE, SECTION_DATA, SECTION_BSS = 0x60000020, 0xC0000040, 0xC0000080
SECTION_READ_ONLY = 0x40000040
IMPORT_ROW = 20
BY_ORDINAL = 0x80000000


class Section:
    def __init__(self, name, rva, size, body, flags):
        self.name, self.rva, self.size, self.body, self.flags = name, rva, size, body, flags

    def holds(self, rva):
        return self.rva <= rva < self.rva + max(self.size, len(self.body))


class Pe:
    def __init__(self, data):
        self.data = data
        head, = struct.unpack_from("<I", data, 0x3C)
        if data[head:head + 4] != b"PE\0\0":
            raise ValueError("no PE program")
        self.machine, count, _, _, _, optional_size, self.flags = struct.unpack_from("<HHIIIHH", data, head + 4)
        self._optional = head + 24
        self.sections = [self._section(self._optional + optional_size + 40 * i) for i in range(count)]

    def _section(self, at):
        name, size, rva, raw, offset, _, _, _, _, flags = struct.unpack_from("<8sIIIIIIHHI", self.data, at)
        return Section(name.rstrip(b"\0").decode(), rva, size, self.data[offset:offset + raw] if raw else b"", flags)

    def _field(self, offset, form="<I"):
        return struct.unpack_from(form, self.data, self._optional + offset)[0]

    entry = property(lambda self: self._field(16))
    base = property(lambda self: self._field(28))
    version = property(lambda self: struct.unpack_from("<HH", self.data, self._optional + 48))
    subsystem = property(lambda self: self._field(68, "<H"))
    stack = property(lambda self: self._field(72))

    def directory(self, number):
        """Address and size."""
        return struct.unpack_from("<II", self.data, self._optional + 96 + 8 * number)

    def section(self, name):
        return next((s for s in self.sections if s.name == name), None)

    def _at(self, rva):
        section = next(s for s in self.sections if s.holds(rva))
        return section.body, rva - section.rva

    def _text(self, rva):
        body, at = self._at(rva)
        return bytes(body[at:body.index(b"\0", at)]).decode()

    def _word(self, rva):
        body, at = self._at(rva)
        return struct.unpack_from("<I", body, at)[0]

    def imports(self):
        """Names, or ordinals as numbers, by DLL in lower case."""
        found = {}
        row, _ = self.directory(DIRECTORY_IMPORT)
        while row and self._word(row + 12):
            names = found.setdefault(self._text(self._word(row + 12)).lower(), [])
            at = self._word(row) or self._word(row + 16)
            while value := self._word(at):
                names.append(value & 0xFFFF if value & BY_ORDINAL else self._text(value + 2))
                at += 4
            row += IMPORT_ROW
        return found
