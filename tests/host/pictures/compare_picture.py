#!/usr/bin/env python3
"""Compares a picture with its reference rendering, with tolerance: compare_picture.py [--update] PICTURE REFERENCE

PICTURE is a PNG as gnuplot writes it, REFERENCE a PNG that holds the means over squares of two by two pixels: where
anti-aliasing differs between builds of gnuplot and cairo, the means hardly do. The picture may differ from it by
MEAN_TOLERANCE on the average over all colours (0 to 255), and by REGION_TOLERANCE on the average over any region of
REGION by REGION pixels of the reference: so neither a shift of everything nor a mark that is missing passes.
Fonts differ between machines: pictures are to be drawn without text.

--update writes the reference, which is to be looked at then. Only Python's standard library is needed.
"""

import struct
import sys
import zlib

MEAN_TOLERANCE = 1.0
REGION_TOLERANCE = 14.0
REGION = 8
SIGNATURE = b"\x89PNG\r\n\x1a\n"


def unfilter(kind, line, above, size):
    """Undoes the filter of one line in place; size: bytes of a pixel."""
    for i in range(len(line)):
        left = line[i - size] if i >= size else 0
        up = above[i]
        corner = above[i - size] if i >= size else 0
        if kind == 1:
            line[i] = (line[i] + left) & 255
        elif kind == 2:
            line[i] = (line[i] + up) & 255
        elif kind == 3:
            line[i] = (line[i] + (left + up) // 2) & 255
        elif kind == 4:
            guess = left + up - corner
            nearest = min((abs(guess - left), 0, left), (abs(guess - up), 1, up), (abs(guess - corner), 2, corner))
            line[i] = (line[i] + nearest[2]) & 255


def read_png(path):
    """Width, height and rows of red, green and blue; only what cairo and write_png write is understood."""
    with open(path, "rb") as file:
        data = file.read()
    if data[:8] != SIGNATURE:
        sys.exit(f"{path}: no PNG")
    packed, place = b"", 8
    while place < len(data):
        length, kind = struct.unpack(">I4s", data[place:place + 8])
        if kind == b"IHDR":
            width, height, depth, colours, _, _, interlace = struct.unpack(">IIBBBBB", data[place + 8:place + 21])
        if kind == b"IDAT":
            packed += data[place + 8:place + 8 + length]
        place += length + 12
    if depth != 8 or colours not in (2, 6) or interlace:
        sys.exit(f"{path}: a PNG of another kind")
    size = 3 if colours == 2 else 4
    raw, rows, above = zlib.decompress(packed), [], bytearray(width * size)
    for y in range(height):
        start = y * (width * size + 1)
        line = bytearray(raw[start + 1:start + 1 + width * size])
        unfilter(raw[start], line, above, size)
        above = line
        rows.append([line[size * x:size * x + 3] for x in range(width)])
    return width, height, rows


def write_png(path, width, height, rows):
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    raw = b"".join(b"\0" + b"".join(bytes(pixel) for pixel in row) for row in rows)
    with open(path, "wb") as file:
        file.write(SIGNATURE + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def halve(width, height, rows):
    """The means over squares of two by two pixels."""
    halved = []
    for y in range(height // 2):
        pairs = zip(rows[2 * y][0::2], rows[2 * y][1::2], rows[2 * y + 1][0::2], rows[2 * y + 1][1::2])
        halved.append([[round(sum(colours) / 4) for colours in zip(*pixels)] for pixels in pairs])
    return width // 2, height // 2, halved


def compare(picture, reference):
    """What is wrong, or nothing."""
    if picture[:2] != reference[:2]:
        return f"{picture[0]} x {picture[1]} instead of {reference[0]} x {reference[1]}"
    width, height = reference[:2]
    regions = {}
    for y in range(height):
        for x in range(width):
            difference = sum(abs(a - b) for a, b in zip(picture[2][y][x], reference[2][y][x])) / 3
            region = (x // REGION, y // REGION)
            regions[region] = regions.get(region, 0.0) + difference
    mean = sum(regions.values()) / (width * height)
    worst = max(regions, key=regions.get)
    most = regions[worst] / REGION ** 2
    print(f"mean difference {mean:.3f}, {most:.2f} in the region at {worst[0] * REGION}, {worst[1] * REGION}")
    if mean > MEAN_TOLERANCE:
        return f"differs by {mean:.3f} on the average"
    return f"differs by {most:.2f} in a region" if most > REGION_TOLERANCE else None


def main(arguments):
    updates = arguments[:1] == ["--update"]
    if len(arguments) != 2 + updates:
        sys.exit(__doc__)
    path, reference = arguments[-2:]
    picture = halve(*read_png(path))
    if updates:
        write_png(reference, *picture)
        return
    fault = compare(picture, read_png(reference))
    if fault:
        sys.exit(f"{path} is not as {reference}: {fault}")


main(sys.argv[1:])
