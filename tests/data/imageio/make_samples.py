#!/usr/bin/python3
"""Makes the small sample pictures the image-file tests decode (run with Pillow)."""
from PIL import Image

# 2 x 2 PNG with alpha: red, green / blue, black at half opacity.
png = Image.new("RGBA", (2, 2))
png.putdata([(255, 0, 0, 255), (0, 255, 0, 255), (0, 0, 255, 255), (0, 0, 0, 128)])
png.save("rgba_2x2.png")

# 16-bit grey PNG, 1 x 1, value 0x8080.
Image.new("I;16", (1, 1), 0x8080).save("grey16_1x1.png")

# Two-frame GIF, 3 x 2, palette: 0 red, 1 green, 2 blue; index 2 transparent in frame 1.
frames = []
for data in ([0, 1, 2, 2, 1, 0], [1, 1, 1, 1, 1, 1]):
    f = Image.new("P", (3, 2))
    f.putpalette([255, 0, 0, 0, 255, 0, 0, 0, 255] + [0] * (253 * 3))
    f.putdata(data)
    frames.append(f)
frames[0].save("two_frames_3x2.gif", save_all=True, append_images=frames[1:], transparency=2, duration=100)

# Solid JPEG 16 x 8, colour (200, 100, 50), and a copy cut before its end marker.
Image.new("RGB", (16, 8), (200, 100, 50)).save("solid_16x8.jpg", quality=95)
data = open("solid_16x8.jpg", "rb").read()
assert data[-2:] == b"\xff\xd9"
open("solid_16x8_cut.jpg", "wb").write(data[:-2])

# The same JPEG with its APP0 segment replaced by an APP2 segment, cut too.
app0_length = (data[4] << 8) | data[5]
app2 = b"\xff\xe2\x00\x08TEST\x00\x00"
open("app2_cut.jpg", "wb").write(data[:2] + app2 + data[4 + app0_length:-2])

# An icon: valid picture data that the loader does not decode.
Image.new("RGB", (16, 16), (1, 2, 3)).save("icon_16.ico")
