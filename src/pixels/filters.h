// The filter pass and its five filters, each working in place on a rectangle of a
// 24-bit pixel buffer (see pixel_rect.h for the addressing). The neighbourhood
// filters report a working copy they cannot get through `outOfMemory` and skip.
#pragma once

#include "pixels/pixel_rect.h"

// Whiten, sharpen and smooth by their step counts, then invert and gray when set.
void ApplyFilters(BYTE* buffer, int x0, int y0, int x1, int y1, int stride, int whitenSteps, int sharpenSteps,
                  int smoothSteps, bool invert, bool gray, const OutOfMemoryHandler& outOfMemory = {});

void WhitenPixels(BYTE* buffer, int x0, int y0, int x1, int y1, int stride, int steps,
                  const OutOfMemoryHandler& outOfMemory = {});
void SharpenPixels(BYTE* buffer, int x0, int y0, int x1, int y1, int stride, int steps,
                   const OutOfMemoryHandler& outOfMemory = {});
void SmoothPixels(BYTE* buffer, int x0, int y0, int x1, int y1, int stride, int steps,
                  const OutOfMemoryHandler& outOfMemory = {});
void InvertPixels(BYTE* buffer, int x0, int y0, int x1, int y1, int stride);
void GrayPixels(BYTE* buffer, int x0, int y0, int x1, int y1, int stride);
