#!/usr/bin/python3
"""Writes the small pictures the object scenarios insert, as 24-bit bitmap files
(plain Python, no libraries).

    sun_16.bmp       an icon: a yellow disc with an orange rim and a red dot, on black,
                     the key colour an editor uses until a transparent colour is set
    arrow_12x8.bmp   an icon that is not symmetric, so that mirroring shows: a blue
                     arrow pointing right on black
    balloon_48x28.bmp  a speech balloon: a white rounded body with a grey outline and
                     a tail at the bottom left, on a light blue background
"""
import os
import sys

# The bitmap writer the tool scenarios' samples use.
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tools"))
from make_samples import write_bmp  # noqa: E402


def sun(x, y):
    d = (x - 7.5) ** 2 + (y - 7.5) ** 2
    if d <= 4:
        return (220, 0, 0)
    if d <= 30:
        return (255, 220, 0)
    if d <= 52:
        return (255, 140, 0)
    return (0, 0, 0)


def arrow(x, y):
    if 2 <= y <= 5 and x <= 6:
        return (30, 60, 220)
    if x >= 7 and abs(y - 3.5) <= 11 - x:
        return (30, 60, 220)
    return (0, 0, 0)


def balloon(x, y):
    inside = ((x - 24) / 22.5) ** 2 + ((y - 11) / 10.5) ** 2
    if inside <= 0.8:
        return (255, 255, 255)
    if inside <= 1.0:
        return (120, 120, 120)
    if 21 <= y <= 27 and 8 <= x <= 8 + (27 - y):
        return (120, 120, 120) if x in (8, 8 + (27 - y)) or y == 27 else (255, 255, 255)
    return (170, 210, 240)


write_bmp("sun_16.bmp", 16, 16, sun)
write_bmp("arrow_12x8.bmp", 12, 8, arrow)
write_bmp("balloon_48x28.bmp", 48, 28, balloon)
