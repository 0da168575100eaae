// Two line patterns drawn into the picture by lightening bytes: a fine check grid and
// wide block grooves. Both are laid out from the image rectangle's left and top edges,
// and both run on below it to the bottom of the surface.
#pragma once

#include "pixels/pixel_rect.h"

// `surface` is a whole buffer (its rows are the surface's, bottom-up) and `image` the
// image rectangle in surface coordinates (top-down), kept inside the surface. With L,
// T, R the rectangle's left, top and right edges, each touched byte v becomes
// trunc(v * 0.8 + 51.0): the surface rows T + 10, T + 20, ... to the bottom of the
// surface in the columns L .. R - 1 except those of the vertical lines, and the
// columns L + 10, L + 20, ... before R from row T to the bottom of the surface. White
// stays white; black becomes 51.
void DrawCheckLines(const PixelRect& surface, const RECT& image);

// Grooves every 30 pixels, each three pixels wide: the outer two lines lightened,
// trunc(v * 0.7 + 60.0), the middle one less, trunc(v * 0.9 + 20.0). Horizontal
// grooves first, on buffer rows r, r + 1, r + 2 for r = Hs - T - 31, then 30 rows
// lower while r >= 0 (Hs the surface's height), the outer lines leaving out the
// columns L, L + 30, ...; then vertical grooves in the columns x - 2, x - 1, x for x =
// L + 30, L + 60, ... before R, from row T to the bottom of the surface, the outer
// lines leaving out the buffer rows r where (r - B + 1) is a multiple of 30 (B the
// rectangle's bottom edge). Where grooves cross, a pixel takes both transforms in
// that order.
void DrawBlockGrooves(const PixelRect& surface, const RECT& image);
