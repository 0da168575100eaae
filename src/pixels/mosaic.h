// The mosaic: a rectangle of a 24-bit pixel buffer in square cells of one colour.
#pragma once

#include "pixels/pixel_rect.h"

// Cells of cellSize x cellSize pixels anchored at the rectangle's top-left corner (the
// top of the picture is the rectangle's last buffer row); the cells along the right
// and bottom edges are cut to what is left. Each cell takes, byte by byte, the mean of
// its pixels, truncated.
void PixelateCells(const PixelRect& rect, int cellSize);
