// The colour pass: brightness, contrast and per-channel gamma through lookup tables,
// then saturation and hue through one colour matrix, in place on a rectangle of a
// 24-bit pixel buffer (see pixel_rect.h for the addressing). Each step is skipped at
// its neutral value.
#pragma once

#include "platform/platform.h"

void AdjustColors(BYTE* buffer, int x0, int y0, int x1, int y1, int stride, int brightness, int contrast,
                  double redGamma, double greenGamma, double blueGamma, double saturation, double hue);
