// Convolution of a rectangle with a square kernel, each byte position on its own; the
// emboss is its one use so far.
#pragma once

#include <span>

#include "pixels/pixel_rect.h"

// Every byte of the rectangle becomes clamp(sum / divisor + offset) to 0..255, where
// sum adds weight * byte over the n x n neighbourhood of the same byte position as it
// was before the call, and the division truncates toward zero. The kernel holds n rows
// of n weights in buffer-row order: first the row for the lowest buffer row (on the
// screen the lowest of the n rows), each left to right. Neighbours beyond the
// rectangle repeat its edge pixels. The edge-replicated working copy that the rule
// reads from, (w + n - 1) x (h + n - 1) pixels, is asked for against the pixel limit
// (only the n rows of it in use at a time are kept); when it cannot be had,
// `outOfMemory` is called and nothing changes. An even or non-positive n, a kernel of
// another size or a divisor of 0 changes nothing either.
void ConvolvePixels(const PixelRect& rect, std::span<const int> kernel, int n, int divisor, int offset,
                    const OutOfMemoryHandler& outOfMemory = {});

// The emboss kernel in buffer-row order. On the screen it reads, rows top to bottom:
// 0 -1 -1 / 1 0 -1 / 1 1 0, so that with the offset of 128 a uniform area becomes 128,
// and an edge brighter towards the lower left rises above it.
inline constexpr int kEmbossKernel[9] = {1, 1, 0, 1, 0, -1, 0, -1, -1};
inline constexpr int kEmbossOffset = 128;

void EmbossPixels(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory = {});
