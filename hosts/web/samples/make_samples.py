#!/usr/bin/python3
"""Draws the demo's sample pictures (photo-like scenes made from gradients, fractal
ridges and grain; fixed seeds, so every run draws the same pictures).

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


if __name__ == "__main__":
    main()
