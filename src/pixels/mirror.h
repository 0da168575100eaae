// Turning pixels over: left for right within the rows of a rectangle (the objects'
// mirror command and the image's reverse), and top for bottom by whole rows (the
// image's flip). Each works on a 24-bit buffer or on any rows in place (their `out`
// side), three or four bytes a pixel.
#pragma once

#include "pixels/pixel_rows.h"

// Each row of the rectangle with its pixels in reverse order.
void MirrorRows(const PixelRect& rect);
void MirrorRows(const PixelRows& rows);

// Buffer rows y0 .. y1 - 1 in reverse order, each moved whole: all `stride` bytes, the
// full width of the buffer whatever the rectangle's columns; an odd count keeps its
// middle row. The rows are exchanged through one row of memory; when that cannot be
// had, `outOfMemory` is called and no row moves. Fewer than two rows move nothing and
// need no memory.
void FlipRows(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory = {});
// The same for the rows given, each `rowBytes()` long.
void FlipRows(const PixelRows& rows, const OutOfMemoryHandler& outOfMemory = {});
