// The colour pass: brightness, contrast and per-channel gamma through lookup tables,
// then saturation and hue through one colour matrix, in place on a rectangle of a
// 24-bit pixel buffer (see pixel_rect.h for the addressing), with the colour settings
// (brightness, contrast, the three gammas, saturation and hue). Each step is skipped
// at its neutral value.
#pragma once

#include "pixels/adjustment_settings.h"
#include "pixels/pixel_rect.h"

void AdjustColors(const PixelRect& rect, const AdjustmentSettings& settings);
