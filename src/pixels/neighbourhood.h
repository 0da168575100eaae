// The neighbourhood filters: each step gives every byte a new value from the 3 x 3
// bytes of its channel around it as they were before the step, the rows' edge pixels
// repeated beyond them.
//
// The rules describe a working copy of (w + 2) x (h + 2) pixels of 3 bytes, the
// rectangle with its edges repeated, refilled for every step. A step only ever looks
// at three of its rows at once, so that is all that is kept: three rows for each part
// of the rows a thread works on, plus the rows just outside the part. The copy is
// still asked for at its full size against the pixel limit (pixel_buffer.h), so that
// a picture too large for it fails the same way on every machine.
#pragma once

#include "pixels/pixel_rows.h"

enum class NeighbourhoodFilter {
  Whiten,   // lift towards white, blur 1 2 1 / 2 4 2 / 1 2 1, then v * 0.9 + 25.5
  Sharpen,  // (36 * centre - above - below - left - right) / 32
  Smooth,   // mean of the nine
};

// Runs `steps` steps of the filter (none below 1). The working rows are asked for
// before the step count is looked at: when they cannot be had, `outOfMemory` is called
// and the rows are left alone.
void RunNeighbourhoodFilter(PixelRows& rows, NeighbourhoodFilter filter, int steps,
                            const OutOfMemoryHandler& outOfMemory);
