// Turning pixels over: left for right within the rows of a rectangle (the objects'
// mirror command and the image's reverse), and top for bottom by whole buffer rows
// (the image's flip).
#pragma once

#include "pixels/pixel_rect.h"

// Each row of the rectangle with its pixels in reverse order.
void MirrorRows(const PixelRect& rect);

// Buffer rows y0 .. y1 - 1 in reverse order, each moved whole: all `stride` bytes, the
// full width of the buffer whatever the rectangle's columns; an odd count keeps its
// middle row. The rows are exchanged through one row of memory; when that cannot be
// had, `outOfMemory` is called and no row moves.
void FlipRows(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory = {});
