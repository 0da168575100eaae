// Resampling for StretchBlt, TransparentBlt and CopyImage. Each axis is planned on its
// own: for every destination index, the source indexes it reads and their integer
// weights. Destination pixels that would read outside the source's bounds are left out,
// as BitBlt leaves them unchanged.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/gdi_objects.h"

namespace platform::gdi {

enum class StretchFilter {
  Nearest,   // one source pixel per destination pixel (COLORONCOLOR)
  AndMerge,  // shrinking: every source pixel merged into its destination with AND
  OrMerge,   // shrinking: the same with OR
  Halftone,  // area average when shrinking, linear interpolation when enlarging
};

// A run of pixels along one axis: `start` in device coordinates and a signed extent
// (negative extents run the other way, so opposite signs mirror).
struct AxisRun {
  std::int64_t start;
  std::int64_t extent;
};

struct AxisTaps {
  std::int64_t destStart = 0;  // device coordinate of the first planned destination pixel
  int count = 0;               // planned destination pixels
  std::vector<int> first;      // count + 1 offsets into source/weight
  std::vector<int> source;     // source indexes in device coordinates (Nearest: one each)
  std::vector<std::uint32_t> weight;
  std::uint64_t total = 1;  // the weights of every destination pixel add up to this
};

// Plans one axis; destination pixels outside [destLo, destHi) or reading outside
// [srcLo, srcHi) are dropped. Merging filters fall back to Nearest when not shrinking.
AxisTaps PlanAxis(StretchFilter filter, AxisRun dest, AxisRun src, std::int64_t destLo, std::int64_t destHi,
                  std::int64_t srcLo, std::int64_t srcHi);

// Receives each finished destination row: device x and y of its first pixel and the
// resampled source-format values.
using RowSink = std::function<void(int x, int y, const std::uint32_t* values, int count)>;

// The one value every resampled pixel takes when every source row the plan reads is
// a single colour, the same for all: any filter's sample, merge or weighted average
// of equal pixels is that pixel (in the source format's colour bits). Empty when the
// rows differ, a row is not stored as one colour, or Resample would refuse the plan.
std::optional<std::uint32_t> UniformResample(StretchFilter filter, const AxisTaps& xs, const AxisTaps& ys,
                                             const raster::Raster& src);

// Runs a plan over `src`; false when Halftone weights would overflow 64 bits.
bool Resample(StretchFilter filter, const AxisTaps& xs, const AxisTaps& ys, const raster::Raster& src,
              const RowSink& sink);

}  // namespace platform::gdi
