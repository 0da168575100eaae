// The filter pass and its five filters, each working in place on a rectangle of a
// 24-bit pixel buffer (see pixel_rect.h for the addressing). The neighbourhood
// filters report a working copy they cannot get through `outOfMemory` and skip.
#pragma once

#include "pixels/adjustment_settings.h"
#include "pixels/pixel_rect.h"

// Whiten, sharpen and smooth by their step counts, then invert and gray when set.
void ApplyFilters(const PixelRect& rect, const AdjustmentSettings& settings,
                  const OutOfMemoryHandler& outOfMemory = {});

void WhitenPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory = {});
void SharpenPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory = {});
void SmoothPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory = {});
void InvertPixels(const PixelRect& rect);
void GrayPixels(const PixelRect& rect);
