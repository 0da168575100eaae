// Plain references of the optimised passes: pixel by pixel, straight from the rules,
// with no tables composed, no lookups for products, no splitting of rows and no
// skipping of repeated steps. Only the differential tests use them; the passes must
// give the same bytes for every picture and setting.
#pragma once

#include "pixels/adjustment_settings.h"
#include "pixels/pixel_rect.h"

namespace reference {

void AdjustColors(const PixelRect& rect, const AdjustmentSettings& settings);
void WhitenPixels(const PixelRect& rect, int steps);
void SharpenPixels(const PixelRect& rect, int steps);
void SmoothPixels(const PixelRect& rect, int steps);

}  // namespace reference
