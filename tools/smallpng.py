"""Makes a PNG of a screenshot smaller: a palette of its most frequent colours takes the place of all."""

import struct
import zlib
from collections import Counter

SIGNATURE = b"\x89PNG\r\n\x1a\n"
MOST_COLOURS = 256


def chunks(png):
    at = len(SIGNATURE)
    while at < len(png):
        size, = struct.unpack(">I", png[at:at + 4])
        yield png[at + 4:at + 8], png[at + 8:at + 8 + size]
        at += 12 + size


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def paeth(left, above, corner):
    guess = left + above - corner
    return min((left, above, corner), key=lambda value: abs(guess - value))


def unfiltered(kind, line, before, step):
    """A line of pixels, from what the file has and the line before it."""
    for i, value in enumerate(line):
        left = line[i - step] if i >= step else 0
        corner = before[i - step] if i >= step else 0
        line[i] = value + (0, left, before[i], (left + before[i]) // 2, paeth(left, before[i], corner))[kind] & 255
    return line


def pixels(png):
    """Width, height, and the colours of all lines, three bytes each."""
    parts = list(chunks(png))
    width, height, depth, kind = struct.unpack(">IIBB", parts[0][1][:10])
    step = {2: 3, 6: 4}[kind]
    if not png.startswith(SIGNATURE) or depth != 8:
        raise ValueError("no screenshot")
    raw = zlib.decompress(b"".join(data for name, data in parts if name == b"IDAT"))
    lines, before = [], bytearray(width * step)
    for at in range(0, len(raw), width * step + 1):
        line = bytearray(raw[at + 1:at + 1 + width * step])
        before = unfiltered(raw[at], line, before, step) if raw[at] else line
        lines.append([bytes(before[i:i + 3]) for i in range(0, len(before), step)])
    return width, height, lines


def smaller(png):
    width, height, lines = pixels(png)
    counts = Counter(colour for line in lines for colour in line)
    # The same picture gives the same palette.
    palette = sorted(counts, key=lambda colour: (-counts[colour], colour))[:MOST_COLOURS]
    nearest = {colour: min(range(len(palette)), key=lambda i: sum((a - b) ** 2 for a, b in zip(colour, palette[i])))
               for colour in counts}
    packed = zlib.compress(b"".join(b"\0" + bytes(nearest[colour] for colour in line) for line in lines), 9)
    return (SIGNATURE + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 3, 0, 0, 0)) +
            chunk(b"PLTE", b"".join(palette)) + chunk(b"IDAT", packed) + chunk(b"IEND", b""))
