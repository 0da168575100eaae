#!/usr/bin/python3
"""Draws the demo's sample pictures (photo-like scenes made from gradients, fractal
ridges and grain; icons, a speech balloon and two picture frames with an overlay;
fixed seeds, so every run draws the same pictures).

    make_samples.py DIR            the small samples the repository ships
    make_samples.py DIR --large    also landscape-12mp.jpg (4000 x 3000), made at build time
"""
import math
import random
import sys
from pathlib import Path

from PIL import Image, ImageDraw, ImageFilter


def gradient(size, stops):
    """A vertical gradient through (position 0..1, (r, g, b)) stops."""
    w, h = size
    column = Image.new("RGB", (1, h))
    px = column.load()
    for y in range(h):
        t = y / max(1, h - 1)
        for (t0, c0), (t1, c1) in zip(stops, stops[1:]):
            if t0 <= t <= t1:
                f = (t - t0) / (t1 - t0) if t1 > t0 else 0
                px[0, y] = tuple(round(a + (b - a) * f) for a, b in zip(c0, c1))
                break
    return column.resize(size)


def ridge(rng, width, base, roughness, steps=9):
    """Heights along a mountain ridge by midpoint displacement."""
    points = [base + rng.uniform(-roughness, roughness) for _ in range(2)]
    spread = roughness
    for _ in range(steps):
        mids = [(a + b) / 2 + rng.uniform(-spread, spread) for a, b in zip(points, points[1:])]
        points = [p for pair in zip(points, mids) for p in pair] + [points[-1]]
        spread *= 0.55
    n = len(points) - 1
    return [(x * width / n, y) for x, y in enumerate(points)]


def grain(image, sigma):
    noise = Image.effect_noise(image.size, sigma).convert("RGB")
    return Image.blend(image, noise, 0.06)


def landscape(size, seed=7):
    rng = random.Random(seed)
    w, h = size
    horizon = int(h * 0.62)
    scene = gradient((w, horizon), [(0, (28, 46, 110)), (0.55, (214, 112, 92)), (1, (252, 196, 120))])
    glow = Image.radial_gradient("L").resize((w // 2, w // 2)).point(lambda v: max(0, 255 - v * 2))
    sun = Image.new("RGB", glow.size, (255, 236, 190))
    scene.paste(sun, (int(w * 0.58) - w // 4, int(horizon * 0.78) - w // 4), glow)
    draw = ImageDraw.Draw(scene)
    for depth, colour in enumerate([(120, 92, 120), (84, 62, 96), (48, 38, 66)]):
        line = ridge(rng, w, horizon * (0.55 + 0.13 * depth), h * (0.16 - 0.03 * depth))
        draw.polygon(line + [(w, horizon), (0, horizon)], fill=colour)
    scene = scene.filter(ImageFilter.GaussianBlur(max(1, w // 900)))
    lake = scene.transpose(Image.FLIP_TOP_BOTTOM).resize((w, h - horizon))
    lake = Image.blend(lake, Image.new("RGB", lake.size, (20, 30, 60)), 0.35)
    ripples = ImageDraw.Draw(lake)
    for _ in range(w // 6):
        y = int(rng.random() ** 1.6 * lake.height)
        x = rng.randrange(w)
        ripples.line([(x, y), (x + rng.randrange(w // 40, w // 8), y)], fill=(200, 170, 150), width=1)
    lake = lake.filter(ImageFilter.GaussianBlur(max(1, w // 700)))
    picture = Image.new("RGB", size)
    picture.paste(scene, (0, 0))
    picture.paste(lake, (0, horizon))
    return grain(picture, 40)


def city(size, seed=11):
    rng = random.Random(seed)
    w, h = size
    picture = gradient(size, [(0, (6, 8, 30)), (0.7, (40, 36, 90)), (1, (120, 70, 90))])
    draw = ImageDraw.Draw(picture)
    for _ in range(w // 3):
        x, y = rng.randrange(w), rng.randrange(int(h * 0.5))
        draw.point((x, y), fill=(255, 255, 230))
    draw.ellipse((w * 0.78, h * 0.08, w * 0.78 + h * 0.12, h * 0.2), fill=(246, 240, 214))
    x = 0
    while x < w:
        bw = rng.randrange(w // 30, w // 11)
        top = int(h * rng.uniform(0.28, 0.75))
        shade = rng.randrange(18, 40)
        draw.rectangle((x, top, x + bw, h), fill=(shade, shade, shade + 14))
        for wy in range(top + 8, h - 6, 14):
            for wx in range(x + 5, x + bw - 6, 10):
                if rng.random() < 0.42:
                    draw.rectangle((wx, wy, wx + 4, wy + 6), fill=(255, rng.randrange(190, 235), 120))
        x += bw + rng.randrange(0, 6)
    return grain(picture.filter(ImageFilter.GaussianBlur(0.6)), 30)


def balloons(size, seed=3):
    """Shaded balloons on a transparent background (PNG transparency is shown over white)."""
    rng = random.Random(seed)
    w, h = size
    picture = Image.new("RGBA", size, (0, 0, 0, 0))
    shade = Image.radial_gradient("L")
    colours = [(230, 60, 70), (60, 140, 230), (250, 190, 40), (80, 190, 110), (170, 90, 200)]
    for i, colour in enumerate(colours):
        r = rng.randrange(w // 12, w // 9)
        cx = int((i + 0.5) * w / len(colours)) + rng.randrange(-r // 3, r // 3)
        cy = rng.randrange(r + 4, h // 2)
        ball = Image.new("RGBA", (2 * r, int(2.3 * r)), colour + (255,))
        light = shade.resize(ball.size).point(lambda v: 255 - v)
        ball = Image.composite(Image.new("RGBA", ball.size, (255, 255, 255, 255)), ball,
                               light.point(lambda v: v // 3))
        mask = Image.new("L", ball.size, 0)
        ImageDraw.Draw(mask).ellipse((0, 0, ball.width - 1, ball.height - 1), fill=235)
        picture.paste(ball, (cx - r, cy - r), mask)
        ImageDraw.Draw(picture).line([(cx, cy - r + ball.height), (cx + rng.randrange(-20, 20), h)],
                                     fill=(90, 90, 90, 255), width=2)
    return picture


def tiles(size):
    """A tiled test card, stored as a bitmap file (read by the control's own reader)."""
    w, h = size
    picture = Image.new("RGB", size)
    draw = ImageDraw.Draw(picture)
    for ty in range(0, h, 16):
        for tx in range(0, w, 16):
            draw.rectangle((tx, ty, tx + 15, ty + 15),
                           fill=((tx * 255) // w, (ty * 255) // h, 255 - (tx * 255) // w if (tx + ty) % 32 else 96))
    return picture


def brush(size):
    """A bitmap brush: a five-pointed star on the drawing layer's key colour
    (0x13, 0x43, 0x0B), the colour a stamp leaves out; the star takes the pen's colour."""
    w, h = size
    picture = Image.new("RGB", size, (0x13, 0x43, 0x0B))
    points = []
    for i in range(10):
        r = (w / 2 - 1) if i % 2 == 0 else w / 5
        a = -math.pi / 2 + i * math.pi / 5
        points.append((w / 2 - 0.5 + r * math.cos(a), h / 2 + r * math.sin(a)))
    ImageDraw.Draw(picture).polygon(points, fill=(0, 0, 0))
    return picture


# The colour the balloon and the icons leave out when they are inserted with it as the
# transparent colour (SetTransparency), magenta, which none of them draws with.
KEY = (255, 0, 255)


def shrunk(triangle, by):
    """The triangle with each side moved `by` pixels inwards."""
    (ax, ay), (bx, by_), (cx, cy) = triangle
    a, b, c = math.dist((bx, by_), (cx, cy)), math.dist((ax, ay), (cx, cy)), math.dist((ax, ay), (bx, by_))
    ix, iy = (a * ax + b * bx + c * cx) / (a + b + c), (a * ay + b * by_ + c * cy) / (a + b + c)
    s = (a + b + c) / 2
    r = math.sqrt(s * (s - a) * (s - b) * (s - c)) / s
    return [(ix + (x - ix) * (r - by) / r, iy + (y - iy) * (r - by) / r) for x, y in triangle]


def speech_balloon(size):
    """A speech balloon for balloon text: a white oval with a dark outline and a tail
    at its lower left, on the key colour. Drawn without smoothing, so no pixel between
    the balloon and the key colour is left half of each."""
    w, h = size
    picture = Image.new("RGB", size, KEY)
    draw = ImageDraw.Draw(picture)
    outline, inside = (40, 40, 40), (255, 255, 255)
    body = (2, 2, w - 3, h * 3 // 4)
    # The tail's root lies inside the oval, so the oval's inside covers it.
    tail = [(w // 4, h * 3 // 4 - 16), (w // 8, h - 3), (w // 4 + 30, h * 3 // 4 - 10)]
    draw.ellipse(body, fill=outline)
    draw.polygon(tail, fill=outline)
    draw.ellipse((body[0] + 2, body[1] + 2, body[2] - 2, body[3] - 2), fill=inside)
    draw.polygon(shrunk(tail, 2), fill=inside)
    return picture


def heart_icon(size):
    """An icon: a red heart with a darker outline, on the key colour."""
    w, h = size
    picture = Image.new("RGB", size, KEY)
    draw = ImageDraw.Draw(picture)
    for inset, colour in ((0, (150, 20, 40)), (2, (225, 45, 70))):
        r = w // 4 - inset // 2
        draw.ellipse((2 + inset, 4 + inset, 2 + 2 * r + inset, 4 + 2 * r + inset), fill=colour)
        draw.ellipse((w - 3 - 2 * r - inset, 4 + inset, w - 3 - inset, 4 + 2 * r + inset), fill=colour)
        draw.polygon([(2 + inset, 4 + r + inset), (w - 3 - inset, 4 + r + inset), (w // 2, h - 3 - inset)],
                     fill=colour)
    return picture


def sun_icon(size):
    """An icon: a yellow sun with twelve rays, on the key colour."""
    w, h = size
    picture = Image.new("RGB", size, KEY)
    draw = ImageDraw.Draw(picture)
    cx, cy = w / 2 - 0.5, h / 2 - 0.5
    for i in range(12):
        a = i * math.pi / 6
        inner, outer, half = w * 0.30, w * 0.48, math.pi / 24
        draw.polygon([(cx + inner * math.cos(a - half), cy + inner * math.sin(a - half)),
                      (cx + outer * math.cos(a), cy + outer * math.sin(a)),
                      (cx + inner * math.cos(a + half), cy + inner * math.sin(a + half))], fill=(240, 150, 20))
    r = w * 0.3
    draw.ellipse((cx - r, cy - r, cx + r, cy + r), fill=(240, 150, 20))
    draw.ellipse((cx - r + 2, cy - r + 2, cx + r - 2, cy + r - 2), fill=(255, 215, 40))
    return picture


# Frame pieces: every piece is FRAME_SIDE pixels square. The edge tiles are no longer
# than the corners are wide, so the part of an edge's last tile that runs past the
# edge's end is always covered by the corner drawn after it.
FRAME_SIDE = 24
# Where each piece goes, in the control's order of frame pieces (counter-clockwise
# from the right edge), and how the top-left corner or the top edge is turned to
# become it (degrees counter-clockwise).
FRAME_PIECES = [("right", -90), ("top-right", -90), ("top", 0), ("top-left", 0), ("left", 90),
                ("bottom-left", 90), ("bottom", 180), ("bottom-right", 180)]


def mix(c0, c1, f):
    return tuple(round(a + (b - a) * f) for a, b in zip(c0, c1))


def ramp(stops, t):
    """The colour at t (0..1) of a ramp through evenly spaced colours."""
    t = min(1.0, max(0.0, t)) * (len(stops) - 1)
    i = min(int(t), len(stops) - 2)
    return mix(stops[i], stops[i + 1], t - i)


def grain_of(along, across, seed):
    """A fixed pseudo-random value in -1..1 for a pixel of a piece."""
    return random.Random(seed * 1_000_003 + along * 131 + across).uniform(-1, 1)


GOLD = [(58, 36, 8), (140, 96, 26), (212, 164, 64), (246, 210, 120), (255, 246, 206)]


def gilded(along, across):
    """A gilded moulding seen across its width (0 the outer edge): a bright rim, a
    rounded gold torus, a row of beads between two grooves, a cove and a lit lip."""
    light = 0.5
    if across == 0 or across == FRAME_SIDE - 1:
        light = 0.05
    elif across <= 2:
        light = 0.95 - 0.1 * across
    elif across <= 7:
        light = 0.35 + 0.55 * math.sin(math.pi * (across - 2.5) / 5.5)
    elif across in (8, 16):
        light = 0.22
    elif across <= 15:
        dx, dy = (along % 8) - 3.5, across - 12
        r = math.hypot(dx, dy)
        if r <= 3.3:
            nx, ny = dx / 3.4, dy / 3.4
            nz = math.sqrt(max(0.0, 1 - nx * nx - ny * ny))
            light = 0.3 + 0.68 * max(0.0, -0.45 * nx - 0.55 * ny + 0.7 * nz)
        else:
            light = 0.28
    elif across <= 21:
        light = 0.3 + 0.45 * (across - 17) / 4
    else:
        light = 0.92
    return ramp(GOLD, light + 0.03 * grain_of(along, across, 1))


WALNUT = [(48, 26, 12), (92, 54, 26), (132, 82, 42), (170, 116, 64)]


def wooden(along, across):
    """A walnut moulding with a gilt slip on its inner side: wavy grain along the
    edge (periodic in a tile's length, so the tiles join), a lit outer bevel and a
    shaded step down to the slip."""
    if across >= 19:
        return ramp(GOLD, [0.2, 0.75, 0.9, 0.45, 0.08][across - 19])
    phase = along / FRAME_SIDE
    wave = math.sin(2 * math.pi * (across / 7.5 + 0.16 * math.sin(2 * math.pi * phase)
                                   + 0.07 * math.sin(4 * math.pi * phase + 1)))
    # Streaks run the length of the edge: their brightness depends on the row alone.
    shade = 0.5 + 0.16 * wave + 0.1 * grain_of(0, across, 3) + 0.04 * grain_of(along, across, 2)
    if across <= 2:
        shade += 0.35 - 0.12 * across
    elif across >= 16:
        shade -= 0.12 * (across - 15)
    return ramp(WALNUT, shade)


def frame_corner(moulding, joint):
    """The top-left corner: the top and the left moulding meeting on the diagonal (a
    mitre), with `joint` drawing over where they meet."""
    picture = Image.new("RGB", (FRAME_SIDE, FRAME_SIDE))
    px = picture.load()
    for y in range(FRAME_SIDE):
        for x in range(FRAME_SIDE):
            px[x, y] = moulding(x, y) if y <= x else moulding(y, x)
    joint(ImageDraw.Draw(picture))
    return picture


def rosette(draw):
    """A gold rosette over the crossing of the bead rows."""
    c = FRAME_SIDE // 2
    draw.ellipse((c - 6, c - 6, c + 6, c + 6), fill=GOLD[0])
    draw.ellipse((c - 5, c - 5, c + 5, c + 5), fill=GOLD[2])
    for dx, dy in ((-3, 0), (3, 0), (0, -3), (0, 3)):
        draw.ellipse((c + dx - 2, c + dy - 2, c + dx + 2, c + dy + 2), fill=GOLD[3])
    draw.ellipse((c - 2, c - 2, c + 2, c + 2), fill=GOLD[1])
    draw.point((c - 1, c - 1), fill=GOLD[4])


def mitre(draw):
    """The joint of two pieces of wood: a dark hairline on the diagonal."""
    draw.line((0, 0, 18, 18), fill=WALNUT[0])


def frame_edge(moulding):
    """The top edge: one tile of the moulding, outer side up."""
    picture = Image.new("RGB", (FRAME_SIDE, FRAME_SIDE))
    px = picture.load()
    for y in range(FRAME_SIDE):
        for x in range(FRAME_SIDE):
            px[x, y] = moulding(x, y)
    return picture


def frame(out, name, moulding, joint):
    """The eight pieces of a frame as out/NAME-PLACE.png."""
    corner, edge = frame_corner(moulding, joint), frame_edge(moulding)
    for place, turn in FRAME_PIECES:
        piece = corner if "-" in place else edge  # a corner's place names two sides
        piece.rotate(turn).save(out / f"{name}-{place}.png", optimize=True)


def ribbon(size):
    """The frame's overlay, laid over the picture's top-left corner: a red sash with
    gold borders and gold dots across the corner, on the key colour. Drawn without
    smoothing, so every pixel is either the sash or the key colour."""
    w, h = size
    picture = Image.new("RGB", size, KEY)
    draw = ImageDraw.Draw(picture)
    near, far = w * 0.42, w * 0.70
    draw.polygon([(near, 0), (far, 0), (0, far), (0, near)], fill=(212, 168, 60))
    draw.polygon([(near + 3, 0), (far - 3, 0), (0, far - 3), (0, near + 3)], fill=(176, 24, 40))
    middle = (near + far) / 2
    for i in range(1, 6):
        x = middle * i / 6
        y = middle - x
        draw.ellipse((x - 2, y - 2, x + 2, y + 2), fill=(250, 220, 120))
    return picture


def main():
    out = Path(sys.argv[1])
    out.mkdir(parents=True, exist_ok=True)
    if "--large" in sys.argv:
        landscape((4000, 3000)).save(out / "landscape-12mp.jpg", quality=88)
        return
    landscape((1280, 853)).save(out / "landscape.jpg", quality=85)
    city((2000, 1200)).save(out / "city.jpg", quality=82)
    balloons((560, 420)).save(out / "balloons.png", optimize=True)
    tiles((256, 192)).save(out / "tiles.bmp")
    brush((24, 24)).save(out / "brush.bmp")
    speech_balloon((200, 130)).save(out / "speech-balloon.png", optimize=True)
    heart_icon((48, 44)).save(out / "icon-heart.png", optimize=True)
    sun_icon((48, 48)).save(out / "icon-sun.png", optimize=True)
    frames = out / "frames"
    frames.mkdir(exist_ok=True)
    frame(frames, "gilded", gilded, rosette)
    frame(frames, "wooden", wooden, mitre)
    ribbon((96, 96)).save(frames / "ribbon.png", optimize=True)


if __name__ == "__main__":
    main()
