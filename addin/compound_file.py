"""Writes compound files (structured storage, version 3): streams in folders, which are called storages, in one file.

The same content gives the same bytes: there are no times and no class identifiers in it.
"""

import struct

SECTOR = 512
MINI_SECTOR = 64
MINI_STREAM_CUTOFF = 4096  # shorter streams share the sectors of the mini stream
DIRECTORY_ENTRY = 128

FAT_SECTOR = 0xFFFFFFFD
END_OF_CHAIN = 0xFFFFFFFE
FREE = 0xFFFFFFFF
NO_STREAM = 0xFFFFFFFF
FAT_SECTORS_IN_HEADER = 109

STORAGE, STREAM, ROOT = 1, 2, 5
BLACK = 1


class _Entry:
    def __init__(self, name, kind):
        self.name, self.kind = name, kind
        self.left = self.right = self.child = NO_STREAM
        self.start, self.size = 0, 0

    def sort_key(self):
        name = self.name.upper().encode("utf-16-le")
        return len(name), [struct.unpack_from("<H", name, at) for at in range(0, len(name), 2)]

    def pack(self):
        name = self.name.encode("utf-16-le") + b"\0\0"
        return struct.pack("<64sHBBIII16sIQQIQ", name, len(name), self.kind, BLACK, self.left, self.right, self.child,
                           b"", 0, 0, 0, self.start, self.size)


class _Chains:
    """Sectors of one size, and the table that chains them."""

    def __init__(self, size):
        self.size, self.data, self.table = size, bytearray(), []

    def add(self, data):
        """The number of the first sector that the data are in."""
        if not data:
            return END_OF_CHAIN
        first = len(self.table)
        count = -(-len(data) // self.size)
        self.table += [*range(first + 1, first + count), END_OF_CHAIN]
        self.data += data.ljust(count * self.size, b"\0")
        return first


def _pack_table(table):
    length = -(-len(table) // (SECTOR // 4)) * (SECTOR // 4)
    return struct.pack(f"<{length}I", *table, *[FREE] * (length - len(table)))


def _add_entries(entries, storage, streams):
    """Appends the entries of a storage's content, and of all below; the tree of each storage is a balanced one of
    black nodes. Pairs each stream's entry with its bytes. Returns the root of the tree."""
    members = []
    for name, content in storage.items():
        if len(name.encode("utf-16-le")) > 62 or not name or set(name) & set("/\\:!"):
            raise ValueError(f"no name for a stream: {name!r}")
        members.append((_Entry(name, STORAGE if isinstance(content, dict) else STREAM), content))
    members.sort(key=lambda member: member[0].sort_key())
    first = len(entries)
    entries += [entry for entry, _ in members]
    for entry, content in members:
        if entry.kind == STORAGE:
            entry.child = _add_entries(entries, content, streams)
        else:
            streams.append((entry, content))

    def tree(begin, end):
        if begin == end:
            return NO_STREAM
        middle = (begin + end) // 2
        entries[middle].left, entries[middle].right = tree(begin, middle), tree(middle + 1, end)
        return middle

    return tree(first, first + len(members))


def write(storage):
    """The file of a root storage: a dictionary of names, whose values are bytes (a stream) or such a dictionary."""
    root = _Entry("Root Entry", ROOT)
    entries, streams = [root], []
    root.child = _add_entries(entries, storage, streams)

    sectors, mini = _Chains(SECTOR), _Chains(MINI_SECTOR)
    for entry, content in streams:
        entry.size = len(content)
        entry.start = (mini if len(content) < MINI_STREAM_CUTOFF else sectors).add(content)
    root.start, root.size = sectors.add(bytes(mini.data)), len(mini.data)

    unused = struct.pack("<64sHBBIII16sIQQIQ", b"", 0, 0, 0, NO_STREAM, NO_STREAM, NO_STREAM, b"", 0, 0, 0, 0, 0)
    directory = b"".join(entry.pack() for entry in entries)
    directory_start = sectors.add(directory + unused * (-len(entries) % (SECTOR // DIRECTORY_ENTRY)))
    mini_table = _pack_table(mini.table)
    mini_table_start = sectors.add(mini_table)

    fat_start = len(sectors.table)
    fat_count = 0
    while fat_count * (SECTOR // 4) < fat_start + fat_count:
        fat_count += 1
    if fat_count > FAT_SECTORS_IN_HEADER:
        raise ValueError("too much for a file whose table of sectors is in the header alone")
    fat = sectors.table + [FAT_SECTOR] * fat_count
    header = struct.pack("<8s16sHHHHH6sIIIIIIIII", b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", b"", 0x3E, 3, 0xFFFE, 9, 6, b"",
                         0, fat_count, directory_start, 0, MINI_STREAM_CUTOFF, mini_table_start,
                         len(mini_table) // SECTOR, END_OF_CHAIN, 0)
    places = [*range(fat_start, fat_start + fat_count)] + [FREE] * (FAT_SECTORS_IN_HEADER - fat_count)
    return header + struct.pack(f"<{FAT_SECTORS_IN_HEADER}I", *places) + sectors.data + _pack_table(fat)
