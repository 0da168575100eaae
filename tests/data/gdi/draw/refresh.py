#!/usr/bin/env python3
"""Redraws the expected pictures of the drawing fixtures with the GDI oracle.

Usage: refresh.py [FILE.txt ...]   (default: every *.txt next to this script)

Each fixture file is an oracle command list. After every `save NAME.bmp` this script
writes the picture the oracle drew as comment lines the oracle ignores:
    # expect .=FFFFFF R=FF0000        one character per colour
    # |....RRR...|                    one line per row, top row first
Existing expect blocks are replaced; everything else is kept. Needs the oracle: the
first shared/gdi-oracle/run.sh found above this folder, or $GDI_ORACLE (it installs
Wine on first use).
"""
import os
import struct
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))


def find_oracle():
    if os.environ.get("GDI_ORACLE"):
        return os.environ["GDI_ORACLE"]
    folder = HERE
    while os.path.dirname(folder) != folder:
        folder = os.path.dirname(folder)
        candidate = os.path.join(folder, "shared", "gdi-oracle", "run.sh")
        if os.path.exists(candidate):
            return candidate
    sys.exit("refresh.py: no shared/gdi-oracle/run.sh above this folder; set GDI_ORACLE")


# Mnemonic characters for the colours the fixtures use; others get letters in order.
NAMED = {0xFFFFFF: ".", 0x000000: "#", 0xFF0000: "R", 0x00FF00: "G", 0x0000FF: "B", 0x808080: "g",
         0x13430B: "k", 0x7F807F: "x"}
SPARE = "abcdefhijlmnopqstuvwyzACDEFHIJKLMNOPQSTUVWXYZ0123456789@$%&*+=?"


def read_bmp(path):
    data = open(path, "rb").read()
    offset = struct.unpack_from("<I", data, 10)[0]
    width, height = struct.unpack_from("<ii", data, 18)
    stride = (width * 3 + 3) & ~3
    rows = []
    for y in range(abs(height)):
        source = height - 1 - y if height > 0 else y
        base = offset + source * stride
        rows.append([(data[base + 3 * x + 2] << 16) | (data[base + 3 * x + 1] << 8) | data[base + 3 * x]
                     for x in range(width)])
    return rows


def expect_block(rows):
    chars = {}
    spare = iter(SPARE)
    for row in rows:
        for colour in row:
            if colour not in chars:
                chars[colour] = NAMED.get(colour) or next(spare)
    legend = " ".join(f"{c}={colour:06X}" for colour, c in chars.items())
    return [f"# expect {legend}"] + ["# |" + "".join(chars[c] for c in row) + "|" for row in rows]


def refresh(path):
    lines = open(path).read().splitlines()
    with tempfile.TemporaryDirectory() as work:
        subprocess.run([find_oracle(), os.path.abspath(path)], cwd=work, check=True)
        out = []
        for line in lines:
            if line.startswith("# expect ") or line.startswith("# |"):
                continue
            out.append(line)
            if line.startswith("save "):
                out += expect_block(read_bmp(os.path.join(work, line.split()[1])))
    open(path, "w").write("\n".join(out) + "\n")


if __name__ == "__main__":
    files = sys.argv[1:] or sorted(os.path.join(HERE, f) for f in os.listdir(HERE) if f.endswith(".txt"))
    for name in files:
        refresh(name)
        print("refreshed", name)
