#!/usr/bin/python3
"""Writes the pieces of a gilded picture frame, as 24-bit bitmap files (plain Python,
no libraries). The border is 14 pixels deep: a dark outer rim, a bright gilt
highlight, a band of beads, a gilt moulding and a dark inner lip; the light comes from
the top left, so the right and bottom sides are a shade darker. The edges tile every
16 pixels (two beads), and each corner is mitred on its diagonal with a ruby set in a
gold rosette, so that it meets both its edges.

    gilt_right.bmp        14 x 16   orientation 0, tiled downward
    gilt_top_right.bmp    14 x 14   orientation 1
    gilt_top.bmp          16 x 14   orientation 2, tiled rightward
    gilt_top_left.bmp     14 x 14   orientation 3
    gilt_left.bmp         14 x 16   orientation 4, tiled downward
    gilt_bottom_left.bmp  14 x 14   orientation 5
    gilt_bottom.bmp       16 x 14   orientation 6, tiled rightward
    gilt_bottom_right.bmp 14 x 14   orientation 7
    corner_ribbon.bmp     60 x 60   orientation 8, the overlay: a red ribbon with gilt
                          piping across the top-left corner, on the key colour magenta
                          (FF00FF), which is left out when it is drawn

The frame looks right with an offset of about 4 (the inner lip then lies over the
picture's edge).
"""
import math
import os
import sys

# The bitmap writer the tool scenarios' samples use.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tools"))
from make_samples import write_bmp  # noqa: E402

DEPTH = 14
TILE = 16
BEAD_PERIOD = 8

RIM = (70, 40, 15)
BEAD_GROUND = (150, 105, 35)
PROFILE = {
    0: RIM,
    1: (125, 82, 28),
    2: (250, 218, 120),
    3: (232, 190, 82),
    9: (220, 170, 64),
    10: (192, 142, 46),
    11: (95, 58, 20),
    12: (240, 202, 104),
    13: (62, 36, 12),
}
RUBY = (175, 20, 35)
RUBY_LIGHT = (235, 90, 100)


def shade(colour, lit):
    return colour if lit else tuple(int(c * 0.82) for c in colour)


def bead(depth, along):
    """The bead band (depths 4..8): gilt beads every 8 pixels, lit from the top left."""
    dx = along % BEAD_PERIOD - 3.5
    dy = depth - 6
    d = math.hypot(dx, dy)
    if d > 2.9:
        return BEAD_GROUND
    light = max(0.0, 1.0 - math.hypot(dx + 1.2, dy + 1.2) / 3.6)
    return tuple(min(255, int(c + (255 - c) * light * 0.8)) for c in (205, 155, 50))


def band(depth, along):
    if depth in PROFILE:
        return PROFILE[depth]
    return bead(depth, along)


def edge(depth_of, along_of, lit):
    return lambda x, y: shade(band(depth_of(x, y), along_of(x, y)), lit)


def corner(dx_of, dy_of, horizontal_lit, vertical_lit):
    """dx: distance from the corner's vertical outer side; dy: from its horizontal one."""
    def pixel(x, y):
        dx, dy = dx_of(x, y), dy_of(x, y)
        # The mitre: each pixel takes the profile of the side it is nearer to.
        depth = min(dx, dy)
        lit = horizontal_lit if dy <= dx else vertical_lit
        r = math.hypot(dx - 6, dy - 6)
        if 4 <= depth <= 8 or r <= 3.6:
            if r <= 1.6:
                return RUBY_LIGHT if (dx - 6) + (dy - 6) < -0.5 else RUBY
            if r <= 3.6:
                return shade((238, 196, 90) if r <= 2.6 else (180, 130, 40), lit)
            return shade(BEAD_GROUND, lit)
        return shade(PROFILE[depth], lit)
    return pixel


def ribbon(x, y):
    s = x + y
    if 22 <= s <= 40:
        if s in (22, 23, 39, 40):
            return (240, 200, 100)
        return (200, 30, 45) if (x - y) % 6 else (170, 20, 35)
    return (255, 0, 255)


last = DEPTH - 1
pieces = {
    "gilt_right.bmp": (DEPTH, TILE, edge(lambda x, y: last - x, lambda x, y: y, False)),
    "gilt_top_right.bmp": (DEPTH, DEPTH, corner(lambda x, y: last - x, lambda x, y: y, True, False)),
    "gilt_top.bmp": (TILE, DEPTH, edge(lambda x, y: y, lambda x, y: x, True)),
    "gilt_top_left.bmp": (DEPTH, DEPTH, corner(lambda x, y: x, lambda x, y: y, True, True)),
    "gilt_left.bmp": (DEPTH, TILE, edge(lambda x, y: x, lambda x, y: y, True)),
    "gilt_bottom_left.bmp": (DEPTH, DEPTH, corner(lambda x, y: x, lambda x, y: last - y, False, True)),
    "gilt_bottom.bmp": (TILE, DEPTH, edge(lambda x, y: last - y, lambda x, y: x, False)),
    "gilt_bottom_right.bmp": (DEPTH, DEPTH, corner(lambda x, y: last - x, lambda x, y: last - y, False, False)),
}

if __name__ == "__main__":
    for name, (width, height, pixel) in pieces.items():
        write_bmp(name, width, height, pixel)
    write_bmp("corner_ribbon.bmp", 60, 60, ribbon)
