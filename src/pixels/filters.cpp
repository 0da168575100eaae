#include "pixels/filters.h"

#include "pixels/pass_plan.h"

void ApplyFilters(const PixelRect& rect, const AdjustmentSettings& settings,
                  const OutOfMemoryHandler& outOfMemory) {
  PassPlan plan;
  plan.AddFilters(settings);
  plan.Run(rect, outOfMemory);
}

namespace {

void RunFilter(const PixelRect& rect, NeighbourhoodFilter filter, int steps,
               const OutOfMemoryHandler& outOfMemory) {
  PassPlan plan;
  plan.AddNeighbourhood(filter, steps);
  plan.Run(rect, outOfMemory);
}

}  // namespace

void WhitenPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunFilter(rect, NeighbourhoodFilter::Whiten, steps, outOfMemory);
}

void SharpenPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunFilter(rect, NeighbourhoodFilter::Sharpen, steps, outOfMemory);
}

void SmoothPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunFilter(rect, NeighbourhoodFilter::Smooth, steps, outOfMemory);
}

void InvertPixels(const PixelRect& rect) {
  PassPlan plan;
  plan.AddInvert();
  plan.Run(rect);
}

void GrayPixels(const PixelRect& rect) {
  PassPlan plan;
  plan.AddGray();
  plan.Run(rect);
}
