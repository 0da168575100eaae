// The colour pass: brightness, contrast and per-channel gamma through lookup tables,
// then saturation and hue through one colour matrix, in place on a rectangle of a
// 24-bit pixel buffer (see pixel_rect.h for the addressing), with the colour settings
// (brightness, contrast, the three gammas, saturation and hue). Each step is skipped
// at its neutral value.
#pragma once

#include <optional>
#include <vector>

#include "pixels/adjustment_settings.h"
#include "pixels/pixel_rect.h"
#include "pixels/pixel_steps.h"

void AdjustColors(const PixelRect& rect, const AdjustmentSettings& settings);

// The steps of the pass, shared by the pass (pass_plan.h) and its plain reference
// (reference_passes.h): the table steps in the order they run, each with one table
// per pixel byte, and the colour matrix when it runs.
std::vector<ByteTables> ColorTableSteps(const AdjustmentSettings& settings);
std::optional<ColorMatrix> ColorMatrixStep(const AdjustmentSettings& settings);
