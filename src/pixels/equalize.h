// Histogram equalisation of a rectangle, each byte position on its own.
#pragma once

#include "pixels/pixel_rect.h"

// With N the rectangle's pixel count and f = 255.0 / N: a byte of value i at its
// position becomes trunc(f * (how many of the rectangle's bytes at that position hold
// a value up to i)), the count taken exactly as a double. So the darkest value present
// becomes trunc(its count * f), not 0, and the brightest trunc(N * f), which is 255
// for most N and 254 for some (25, 100). The counts and tables are fixed arrays; the
// pass allocates nothing.
void EqualizePixels(const PixelRect& rect);
