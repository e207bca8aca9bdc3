"""Writes a cabinet file: one folder, not compressed, which every loader reads."""
import struct

BLOCK = 0x8000
DATE = 0x2821  # 1 January 2000, so that a package depends on its contents alone
FLAG_ARCHIVE = 0x20
HEADER, FOLDER, SET_ID = 36, 8, 0x1CE


def checksum(data, seed):
    """Words are combined; of a last incomplete one the bytes count in reverse order."""
    whole = len(data) & ~3
    for (word,) in struct.iter_unpack("<I", data[:whole]):
        seed ^= word
    return seed ^ int.from_bytes(data[whole:], "big")


def data_block(block):
    lengths = struct.pack("<HH", len(block), len(block))
    return struct.pack("<I", checksum(block, checksum(lengths, 0))) + lengths + block


def cabinet(entries):
    """entries: (name in the cabinet, bytes)."""
    data = b"".join(body for _, body in entries)
    rows, at = b"", 0
    for name, body in entries:
        rows += struct.pack("<IIHHHH", len(body), at, 0, DATE, 0, FLAG_ARCHIVE) + name.encode() + b"\0"
        at += len(body)
    blocks = [data_block(data[i:i + BLOCK]) for i in range(0, len(data), BLOCK)]
    first_data = HEADER + FOLDER + len(rows)
    size = first_data + sum(map(len, blocks))
    header = struct.pack("<4sIIIIIBBHHHHH", b"MSCF", 0, size, 0, HEADER + FOLDER, 0, 3, 1, 1, len(entries), 0, SET_ID, 0)
    return header + struct.pack("<IHH", first_data, len(blocks), 0) + rows + b"".join(blocks)
