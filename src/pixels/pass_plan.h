// The pixel passes of a rebuild as the steps they take, in order, run over any rows
// (pixel_rows.h): a 24-bit buffer in place, or straight from one 32-bit bitmap into
// another. Steps that work pixel by pixel and follow each other run together, a row
// at a time (pixel_steps.h); the neighbourhood filters run step by step
// (neighbourhood.h). Either way every byte is what the passes one after another give.
#pragma once

#include <variant>
#include <vector>

#include "pixels/adjustment_settings.h"
#include "pixels/neighbourhood.h"
#include "pixels/pixel_steps.h"

class PassPlan {
 public:
  // The colour pass: brightness, contrast and the gammas through tables, then
  // saturation and hue through the colour matrix; each skipped at its neutral value.
  void AddColors(const AdjustmentSettings& settings);
  // The filter pass: whiten, sharpen and smooth by their step counts (each asking for
  // its working rows even at no steps), then invert and gray when set.
  void AddFilters(const AdjustmentSettings& settings);
  void AddNeighbourhood(NeighbourhoodFilter filter, int steps);
  void AddInvert();
  void AddGray();

  // Runs every step over the rows; afterwards every row of their `out` side holds the
  // result, also when no step changed a pixel.
  void Run(PixelRows& rows, const OutOfMemoryHandler& outOfMemory = {}) const;
  // The same over a rectangle of a 24-bit buffer, in place.
  void Run(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory = {}) const;

 private:
  struct Neighbourhood {
    NeighbourhoodFilter filter;
    int steps;
  };
  // The pixel-by-pixel steps that the next such step joins.
  PixelSteps& PixelwiseTail();

  std::vector<std::variant<PixelSteps, Neighbourhood>> steps_;
};
