#include "pixels/pass_plan.h"

#include "pixels/adjust_colors.h"

void PassPlan::AddColors(const AdjustmentSettings& settings) {
  for (const ByteTables& tables : ColorTableSteps(settings)) PixelwiseTail().AddTables(tables);
  if (const std::optional<ColorMatrix> matrix = ColorMatrixStep(settings)) PixelwiseTail().AddMatrix(*matrix);
}

void PassPlan::AddFilters(const AdjustmentSettings& settings) {
  AddNeighbourhood(NeighbourhoodFilter::Whiten, settings.whitenSteps);
  AddNeighbourhood(NeighbourhoodFilter::Sharpen, settings.sharpenSteps);
  AddNeighbourhood(NeighbourhoodFilter::Smooth, settings.smoothSteps);
  if (settings.invert) AddInvert();
  if (settings.gray) AddGray();
}

void PassPlan::AddNeighbourhood(NeighbourhoodFilter filter, int steps) {
  steps_.emplace_back(Neighbourhood{filter, steps});
}

void PassPlan::AddInvert() {
  ByteTables inverse;
  for (LookupTable& table : inverse.byte) {
    for (std::size_t v = 0; v < 256; ++v) table[v] = static_cast<BYTE>(255 - v);
  }
  PixelwiseTail().AddTables(inverse);
}

void PassPlan::AddGray() { PixelwiseTail().AddGray(); }

// A neighbourhood filter of no steps only asks for its working rows and changes no
// pixel, so the pixel steps on either side of it still run together.
PixelSteps& PassPlan::PixelwiseTail() {
  for (auto step = steps_.rbegin(); step != steps_.rend(); ++step) {
    if (auto* pixelwise = std::get_if<PixelSteps>(&*step)) return *pixelwise;
    if (std::get<Neighbourhood>(*step).steps > 0) break;
  }
  return std::get<PixelSteps>(steps_.emplace_back(PixelSteps{}));
}

void PassPlan::Run(PixelRows& rows, const OutOfMemoryHandler& outOfMemory) const {
  for (const auto& step : steps_) {
    if (const auto* pixelwise = std::get_if<PixelSteps>(&step)) {
      pixelwise->Run(rows);
    } else {
      const Neighbourhood& filter = std::get<Neighbourhood>(step);
      RunNeighbourhoodFilter(rows, filter.filter, filter.steps, outOfMemory);
    }
  }
  rows.FillUnwritten();
}

void PassPlan::Run(const PixelRect& rect, const OutOfMemoryHandler& outOfMemory) const {
  PixelRows rows = RowsOf(rect);
  Run(rows, outOfMemory);
}
