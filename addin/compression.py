"""The compression of macro sources: chunks of 4096 bytes, each a run of literals and of copies from the same chunk."""

import struct

CHUNK = 4096
CONTAINER_SIGNATURE = b"\x01"
CHUNK_SIGNATURE = 0b011 << 12
COMPRESSED = 1 << 15
SHORTEST_COPY = 3
MOST_CANDIDATES = 64  # looked at for a copy; more make the result hardly smaller


def _length_bits(position):
    """How many of a copy's 16 bits hold its length: the farther back it may reach, the fewer."""
    return 16 - max(4, (position - 1).bit_length())


def _tokens(chunk):
    """Literals (one byte) and copies (two bytes) that make the chunk."""
    seen = {}  # where each three bytes have been

    def note(position):
        seen.setdefault(chunk[position:position + SHORTEST_COPY], []).append(position)

    position = 0
    while position < len(chunk):
        bits = _length_bits(position)
        longest = min((1 << bits) - 1 + SHORTEST_COPY, len(chunk) - position)
        best, best_at = 0, 0  # fewer than three bytes at the end are like nothing before
        for start in seen.get(chunk[position:position + SHORTEST_COPY], [])[:-MOST_CANDIDATES - 1:-1]:
            length = SHORTEST_COPY
            while length < longest and chunk[start + length] == chunk[position + length]:
                length += 1
            if length > best:
                best, best_at = length, start
        if best:
            yield struct.pack("<H", (position - best_at - 1) << bits | best - SHORTEST_COPY)
        else:
            best = 1
            yield chunk[position:position + 1]
        for passed in range(position, position + best):
            note(passed)
        position += best


def _pack(chunk):
    tokens = list(_tokens(chunk))
    packed = bytearray()
    for at in range(0, len(tokens), 8):
        group = tokens[at:at + 8]
        packed.append(sum((len(token) > 1) << bit for bit, token in enumerate(group)))
        packed += b"".join(group)
    if len(packed) <= CHUNK:
        return struct.pack("<H", COMPRESSED | CHUNK_SIGNATURE | len(packed) - 1) + packed
    if len(chunk) < CHUNK:
        raise ValueError("the end can not be compressed, and only whole chunks may stay as they are")
    return struct.pack("<H", CHUNK_SIGNATURE | CHUNK - 1) + chunk


def compress(data):
    """The container of the data. ValueError for data whose last, shorter chunk hardly shrinks, which no text does."""
    return CONTAINER_SIGNATURE + b"".join(_pack(data[at:at + CHUNK]) for at in range(0, len(data), CHUNK))
