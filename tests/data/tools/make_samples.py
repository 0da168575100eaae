#!/usr/bin/python3
"""Writes the small pictures the tool scenarios draw on, as 24-bit bitmap files and
a PNG (plain Python, no libraries).

    scene_80x60.bmp   a sky and a meadow in gradients, a pure green square at
                      (50..59, 10..19) and a dark blue disc around (20, 40)
    brush_16.bmp      a bitmap brush: a black ring and dot on the drawing layer's key
                      colour (0x13, 0x43, 0x0B), which a stamp leaves out
    wide_300x200.png  a picture larger than the scenario windows, with a grid every 20
                      pixels so that scrolling shows
"""
import struct
import zlib


def write_bmp(path, width, height, pixel):
    """pixel(x, y) -> (r, g, b); rows stored bottom-up, padded to 4 bytes."""
    stride = (width * 3 + 3) & ~3
    rows = []
    for y in range(height - 1, -1, -1):
        row = bytearray()
        for x in range(width):
            r, g, b = pixel(x, y)
            row += bytes((b, g, r))
        row += bytes(stride - len(row))
        rows.append(bytes(row))
    data = b"".join(rows)
    header = struct.pack("<2sIHHI", b"BM", 54 + len(data), 0, 0, 54)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(data), 2835, 2835, 0, 0)
    with open(path, "wb") as out:
        out.write(header + info + data)


def write_png(path, width, height, pixel):
    """pixel(x, y) -> (r, g, b); 8-bit RGB, no filtering."""
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    raw = b"".join(b"\0" + bytes(c for x in range(width) for c in pixel(x, y)) for y in range(height))
    ihdr = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", ihdr) + chunk(b"IDAT", zlib.compress(raw, 9))
                  + chunk(b"IEND", b""))


def scene(x, y):
    if 50 <= x < 60 and 10 <= y < 20:
        return (0, 255, 0)
    if (x - 20) ** 2 + (y - 40) ** 2 <= 64:
        return (20, 30, 110)
    if y < 30:
        return (110 + x, 160 + y * 2, 230)
    return (90 + x // 2, 150 - (y - 30) * 2, 60 + x // 3)


KEY = (0x13, 0x43, 0x0B)


def brush(x, y):
    d = (x - 7.5) ** 2 + (y - 7.5) ** 2
    return (0, 0, 0) if 25 <= d <= 56 or d <= 4 else KEY


def wide(x, y):
    if x % 20 == 0 or y % 20 == 0:
        return (60, 60, 60)
    return (200 - y // 2, 180 + x // 6, 120 + y // 2)


if __name__ == "__main__":
    write_bmp("scene_80x60.bmp", 80, 60, scene)
    write_bmp("brush_16.bmp", 16, 16, brush)
    write_png("wide_300x200.png", 300, 200, wide)
