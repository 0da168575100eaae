#!/usr/bin/python3
"""Writes small run-length compressed bitmap files (16 x 8, bottom-up) and what
Windows' SetDIBits makes of each, as seen through Wine's GDI:

    NAME.bmp          the compressed file
    NAME.filled.bmp   SetDIBits into a 32-bit DIB section filled with 123456 first,
                      so that pixels the codes leave alone show
    NAME.new.bmp      SetDIBits into a new bitmap compatible with the screen, as the
                      picture loader does

The second and third need wine64 and the MinGW compiler (gdi-oracle's run.sh
installs both); without them only the compressed files are written.
"""
import os
import shutil
import struct
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
RLE8, RLE4 = 1, 2
EOL, EOB = [0, 0], [0, 1]
PALETTE = [0x000000, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0x00FFFF, 0xFF00FF, 0x808080,
           0x800000, 0x008000, 0x000080, 0x808000, 0x008080, 0x800080, 0xC0C0C0, 0xFFFFFF]


def delta(dx, dy):
    return [0, 2, dx, dy]


def absolute(count, data):
    """An absolute run: its data bytes, padded to a whole word."""
    return [0, count] + data + [0] * (len(data) % 2)


def write_rle(name, bits, codes, size_image=None, width=16, height=8):
    data = bytes(codes)
    table = b"".join(struct.pack("<BBBB", c & 255, (c >> 8) & 255, c >> 16, 0) for c in PALETTE)
    offset = 14 + 40 + len(table)
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, RLE8 if bits == 8 else RLE4,
                         len(data) if size_image is None else size_image, 2835, 2835, len(PALETTE), 0)
    head = b"BM" + struct.pack("<IHHI", offset + len(data), 0, 0, offset)
    with open(os.path.join(HERE, name + ".bmp"), "wb") as f:
        f.write(head + header + table + data)


FIXTURES = {
    # Encoded runs; absolute runs of odd and even length; a delta along a line and one
    # that also moves up; end of line; indexes past the 16-entry table; end of picture
    # half way, leaving the lines above alone.
    "rle8_codes": (8, [5, 1] + absolute(3, [2, 3, 4]) + absolute(4, [5, 6, 7, 8]) + [4, 9] + EOL
                   + delta(3, 0) + absolute(5, [10, 11, 12, 13, 14]) + delta(2, 1) + [3, 15] + EOL
                   + [16, 20] + EOL
                   + [1, 1] + absolute(3, [255, 2, 3]) + EOB),
    # The same for two pixels a byte: runs alternate their two colours, also from an odd
    # column; absolute runs of 3, 4, 5 and 7 pixels (2, 2, 3 and 4 bytes).
    "rle4_codes": (4, [5, 0x12, 3, 0x34] + absolute(3, [0x56, 0x70]) + absolute(5, [0x89, 0xAB, 0xC0]) + EOL
                   + delta(1, 0) + absolute(4, [0xDE, 0xF1]) + [2, 0xFF] + delta(4, 2) + [5, 0x23] + EOL
                   + absolute(7, [0x12, 0x34, 0x56, 0x70]) + [9, 0x9A] + EOB),
    # Data that stop without an end of picture: runs after the last end of line or
    # delta are not shown.
    "rle8_no_end": (8, [16, 1] + EOL + [4, 2] + delta(2, 0) + [3, 3] + EOL + [5, 4, 6, 5]),
    # Runs past the end of a line are cut there and later runs on it vanish; a delta past
    # the right edge stops at it; an end of line past the last line ends the picture.
    "rle8_overrun": (8, [10, 1, 10, 2, 3, 3] + EOL
                     + [12, 4] + absolute(6, [1, 2, 3, 4, 5, 6]) + absolute(3, [7, 8, 9]) + EOL
                     + delta(30, 0) + [2, 5] + EOL + [2, 6] + EOL + EOL + EOL + EOL
                     + [3, 8] + EOL + [4, 9] + EOB),
    # A delta past the top ends the picture.
    "rle8_delta_past": (8, [2, 1] + delta(3, 5) + [2, 2] + delta(0, 3) + [3, 3] + EOB),
    # An absolute run whose data are cut short ends the picture, taking the runs of its
    # line with it.
    "rle4_truncated": (4, [16, 0x12] + EOL + [3, 0x34] + EOL + [4, 0x56, 0, 5, 0x12, 0x34]),
    # A delta cut short still shows its line.
    "rle8_truncated_delta": (8, [4, 1] + EOL + [3, 2, 0, 2, 1]),
    # The declared image size, not the data, bounds the codes: an odd size of 9 reads
    # four codes.
    "rle8_declared_short": (8, [8, 1] + EOL + [8, 2] + EOL + [8, 3] + EOB, 9),
}


def run_oracle(names):
    wine = "/usr/lib/wine/wine64"
    if not shutil.which("x86_64-w64-mingw32-gcc") or not os.path.exists(wine):
        print("no wine64 or MinGW: only the compressed files were written", file=sys.stderr)
        return
    exe = "/tmp/set_dibits.exe"
    subprocess.run(["x86_64-w64-mingw32-gcc", "-O2", "-o", exe, os.path.join(HERE, "set_dibits.c"),
                    "-lgdi32", "-luser32"], check=True)
    env = dict(os.environ, WINEDEBUG="-all", WINEPREFIX=os.environ.get("WINEPREFIX", "/tmp/gdi-oracle-prefix"))
    for name in names:
        for target, suffix in (("123456", "filled"), ("new", "new")):
            subprocess.run([wine, exe, name + ".bmp", f"{name}.{suffix}.bmp", target], cwd=HERE, env=env,
                           check=True)


if __name__ == "__main__":
    for name, (bits, codes, *size) in FIXTURES.items():
        write_rle(name, bits, codes, *size)
    run_oracle(FIXTURES)
