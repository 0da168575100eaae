// Plain references of the optimised passes: pixel by pixel, straight from the rules,
// with no tables composed, no lookups for products, no splitting of rows and no
// skipping of repeated steps. Only the differential tests use them; the passes must
// give the same bytes for every picture and setting.
#pragma once

#include <span>

#include "pixels/adjustment_settings.h"
#include "pixels/pixel_rect.h"

namespace reference {

void AdjustColors(const PixelRect& rect, const AdjustmentSettings& settings);
void WhitenPixels(const PixelRect& rect, int steps);
void SharpenPixels(const PixelRect& rect, int steps);
void SmoothPixels(const PixelRect& rect, int steps);
// The whole adjustment a rebuild runs: the colour pass, the three neighbourhood
// filters, then invert and gray.
void AdjustPixels(const PixelRect& rect, const AdjustmentSettings& settings);

// The effects, pixel by pixel: exchanges byte by byte, the rotation without tiles, the
// convolution reading a whole working copy, the histogram counted in one pass.
void MirrorRows(const PixelRect& rect);
void FlipRows(const PixelRect& rect);
void RotateQuarter(const PixelRect& source, int angle, const PixelRect& destination);
void ConvolvePixels(const PixelRect& rect, std::span<const int> kernel, int n, int divisor, int offset);
void EqualizePixels(const PixelRect& rect);
// The line patterns column by column over a whole buffer, each touched pixel's bytes
// computed by the transform itself rather than a table.
void DrawCheckLines(const PixelRect& surface, const RECT& image);
void DrawBlockGrooves(const PixelRect& surface, const RECT& image);

}  // namespace reference
