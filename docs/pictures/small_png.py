"""Makes a picture of a window small: 256 colours are enough for text on flat ground.

Python's standard library alone. Reads and writes PNG files of 8 bits, not interlaced.
"""

import collections
import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
STEP = 17  # between two levels of a colour: 16 of them
BYTES_OF_TYPE = {2: 3, 6: 4}  # RGB, RGB with alpha


def chunks(data):
    at = len(SIGNATURE)
    while at < len(data):
        (length,) = struct.unpack(">I", data[at : at + 4])
        yield data[at + 4 : at + 8], data[at + 8 : at + 8 + length]
        at += 12 + length


def unfiltered(kind, line, above, size):
    """One row of a PNG file without the prediction that it was stored with."""
    out = bytearray(line)
    for i, value in enumerate(line):
        left = out[i - size] if i >= size else 0
        up = above[i]
        if kind == 1:
            guess = left
        elif kind == 2:
            guess = up
        elif kind == 3:
            guess = (left + up) // 2
        else:
            corner = above[i - size] if i >= size else 0
            guess = min((left, up, corner), key=lambda each: abs(left + up - corner - each))
        out[i] = value + guess & 0xFF
    return out


def read_rows(data):
    """Width and rows of (r, g, b)."""
    parts = collections.defaultdict(bytes)
    for name, content in chunks(data):
        parts[name] += content
    width, height, depth, kind = struct.unpack(">IIBB", parts[b"IHDR"][:10])
    if depth != 8 or kind not in BYTES_OF_TYPE:
        return None
    size = BYTES_OF_TYPE[kind]
    raw = zlib.decompress(parts[b"IDAT"])
    above, rows = bytes(width * size), []
    for y in range(height):
        start = y * (width * size + 1)
        line = raw[start + 1 : start + 1 + width * size]
        above = unfiltered(raw[start], line, above, size) if raw[start] else line
        rows.append(list(zip(above[0::size], above[1::size], above[2::size], strict=True)))
    return width, rows


def palette_of(rows):
    """The colours to keep, and the place of each colour among them."""
    count = collections.Counter()
    for row in rows:
        count.update(row)
    rounded = {
        colour: tuple((level + STEP // 2) // STEP * STEP for level in colour) for colour in count
    }
    common = collections.Counter()
    for colour, times in count.items():
        common[rounded[colour]] += times
    kept = [colour for colour, _ in common.most_common(256)]
    place = {}
    for colour, wanted in rounded.items():
        near = min(kept, key=lambda each: sum((a - b) ** 2 for a, b in zip(each, wanted, strict=True)))
        place[colour] = kept.index(near)
    return kept, place


def chunk(name, content):
    return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))


def make_small(path):
    read = read_rows(path.read_bytes())
    if not read:
        return  # it is small already
    width, rows = read
    kept, place = palette_of(rows)
    lines = b"".join(b"\0" + bytes(place[colour] for colour in row) for row in rows)
    path.write_bytes(
        SIGNATURE
        + chunk(b"IHDR", struct.pack(">IIBBBBB", width, len(rows), 8, 3, 0, 0, 0))
        + chunk(b"PLTE", bytes(level for colour in kept for level in colour))
        + chunk(b"IDAT", zlib.compress(lines, 9))
        + chunk(b"IEND", b"")
    )
