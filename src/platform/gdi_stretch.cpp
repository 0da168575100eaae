#include "platform/gdi_stretch.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace platform::gdi {
namespace {

struct TapRange {
  std::int64_t begin;  // source-relative
  std::int64_t end;
};

// Source pixels (relative to the normalised source start) read by destination j,
// for an axis of `d` destination and `s` source pixels.
TapRange RangeFor(StretchFilter filter, std::int64_t j, std::int64_t d, std::int64_t s) {
  if (filter == StretchFilter::Halftone && d < s) {
    // Source pixel i spans [i*d, (i+1)*d) and destination j spans [j*s, (j+1)*s).
    return {j * s / d, ((j + 1) * s + d - 1) / d};
  }
  if (filter == StretchFilter::Halftone && d > s) {
    const std::int64_t pos = std::max<std::int64_t>(0, (2 * j + 1) * s - d);
    const std::int64_t i = std::min(pos / (2 * d), s - 1);
    return {i, std::min(i + 2, s)};
  }
  if ((filter == StretchFilter::AndMerge || filter == StretchFilter::OrMerge) && d < s) {
    // Source pixel i merges into the destination pixel under its centre,
    // floor((2i + 1) * d / (2s)); invert that for the run of i landing on j.
    const auto firstOf = [&](std::int64_t k) { return (2 * k * s + d - 1) / (2 * d); };
    return {firstOf(j), std::min(firstOf(j + 1), s)};
  }
  if (d == s) return {j, j + 1};
  // Nearest pixel as GDI samples it: rounded centres when shrinking, the pixel under
  // the destination's left edge when enlarging.
  const std::int64_t pick = d < s ? ((2 * j + 1) * s + d) / (2 * d) : j * s / d;
  return {pick, pick + 1};
}

// Weight of source-relative pixel i for destination j (Halftone only).
std::uint32_t WeightFor(std::int64_t i, std::int64_t j, std::int64_t d, std::int64_t s) {
  if (d < s) {
    const std::int64_t lo = std::max(i * d, j * s);
    const std::int64_t hi = std::min((i + 1) * d, (j + 1) * s);
    return static_cast<std::uint32_t>(std::max<std::int64_t>(0, hi - lo));
  }
  if (d > s) {
    const std::int64_t pos = std::max<std::int64_t>(0, (2 * j + 1) * s - d);
    const std::int64_t i0 = pos / (2 * d);
    if (i0 >= s - 1) return static_cast<std::uint32_t>(2 * d);
    const std::int64_t frac = pos % (2 * d);
    return static_cast<std::uint32_t>(i == i0 ? 2 * d - frac : frac);
  }
  return 1;
}

std::uint64_t TotalFor(StretchFilter filter, std::int64_t d, std::int64_t s) {
  if (filter != StretchFilter::Halftone || d == s) return 1;
  return static_cast<std::uint64_t>(d < s ? s : 2 * d);
}

using Sums = std::vector<std::uint64_t>;

// Horizontal halftone pass of one source row: per destination column, the weighted
// channel sums (blue, green, red), not yet divided.
void WeightRow(const AxisTaps& xs, const std::uint32_t* row, Sums& out) {
  out.assign(static_cast<std::size_t>(xs.count) * 3, 0);
  for (int j = 0; j < xs.count; ++j) {
    std::uint64_t b = 0, g = 0, r = 0;
    for (int t = xs.first[j]; t < xs.first[j + 1]; ++t) {
      const std::uint32_t p = row[xs.source[t]];
      const std::uint64_t w = xs.weight[t];
      b += w * (p & 0xFF);
      g += w * ((p >> 8) & 0xFF);
      r += w * ((p >> 16) & 0xFF);
    }
    out[3 * j] = b;
    out[3 * j + 1] = g;
    out[3 * j + 2] = r;
  }
}

// Whether the weighted sums of a halftone plan could overflow 64 bits.
bool HalftoneOverflows(const AxisTaps& xs, const AxisTaps& ys) {
  const std::uint64_t limit = std::numeric_limits<std::uint64_t>::max() / 2 / 255;
  return xs.total > limit / ys.total;
}

bool Halftone(const AxisTaps& xs, const AxisTaps& ys, const raster::Raster& src, const RowSink& sink) {
  if (HalftoneOverflows(xs, ys)) return false;
  const std::uint64_t total = xs.total * ys.total;
  // Consecutive destination rows share source rows; keep the last two weighted rows.
  std::array<Sums, 2> cache;
  std::array<int, 2> cachedRow{-1, -1};
  int nextSlot = 0;
  Sums accumulated;
  std::vector<std::uint32_t> values(static_cast<std::size_t>(xs.count));
  for (int j = 0; j < ys.count; ++j) {
    accumulated.assign(static_cast<std::size_t>(xs.count) * 3, 0);
    for (int t = ys.first[j]; t < ys.first[j + 1]; ++t) {
      const int sourceRow = ys.source[t];
      int slot = cachedRow[0] == sourceRow ? 0 : cachedRow[1] == sourceRow ? 1 : -1;
      if (slot < 0) {
        slot = nextSlot;
        nextSlot ^= 1;
        WeightRow(xs, src.Row(sourceRow), cache[slot]);
        cachedRow[slot] = sourceRow;
      }
      const std::uint64_t w = ys.weight[t];
      for (std::size_t k = 0; k < accumulated.size(); ++k) accumulated[k] += w * cache[slot][k];
    }
    for (int i = 0; i < xs.count; ++i) {
      const auto channel = [&](int c) { return (accumulated[3 * i + c] + total / 2) / total; };
      values[i] = static_cast<std::uint32_t>(channel(0) | (channel(1) << 8) | (channel(2) << 16));
    }
    sink(static_cast<int>(xs.destStart), static_cast<int>(ys.destStart + j), values.data(), xs.count);
  }
  return true;
}

void Sample(StretchFilter filter, const AxisTaps& xs, const AxisTaps& ys, const raster::Raster& src,
            const RowSink& sink) {
  std::vector<std::uint32_t> values(static_cast<std::size_t>(xs.count));
  const bool orMerge = filter == StretchFilter::OrMerge;
  for (int j = 0; j < ys.count; ++j) {
    for (int i = 0; i < xs.count; ++i) {
      std::uint32_t merged = orMerge ? 0 : 0xFFFFFFFFu;
      for (int ty = ys.first[j]; ty < ys.first[j + 1]; ++ty) {
        const std::uint32_t* row = src.Row(ys.source[ty]);
        for (int tx = xs.first[i]; tx < xs.first[i + 1]; ++tx) {
          merged = orMerge ? merged | row[xs.source[tx]] : merged & row[xs.source[tx]];
        }
      }
      values[i] = merged & raster::kColorMask;
    }
    sink(static_cast<int>(xs.destStart), static_cast<int>(ys.destStart + j), values.data(), xs.count);
  }
}

}  // namespace

AxisTaps PlanAxis(StretchFilter filter, AxisRun dest, AxisRun src, std::int64_t destLo, std::int64_t destHi,
                  std::int64_t srcLo, std::int64_t srcHi) {
  AxisTaps taps;
  const std::int64_t d = dest.extent < 0 ? -dest.extent : dest.extent;
  const std::int64_t s = src.extent < 0 ? -src.extent : src.extent;
  const std::int64_t destStart = dest.extent < 0 ? dest.start + dest.extent : dest.start;
  const std::int64_t srcStart = src.extent < 0 ? src.start + src.extent : src.start;
  const bool mirrored = (dest.extent < 0) != (src.extent < 0);
  if (d == 0 || s == 0) return taps;
  taps.total = TotalFor(filter, d, s);
  const std::int64_t jBegin = std::max<std::int64_t>(0, destLo - destStart);
  const std::int64_t jEnd = std::min<std::int64_t>(d, destHi - destStart);
  // The readable destination pixels form one run, because the source ranges move
  // monotonically with j; find it, then lay out its taps.
  std::int64_t first = -1;
  taps.first.push_back(0);
  for (std::int64_t j = jBegin; j < jEnd; ++j) {
    const std::int64_t jj = mirrored ? d - 1 - j : j;
    const TapRange range = RangeFor(filter, jj, d, s);
    const bool readable = srcStart + range.begin >= srcLo && srcStart + range.end <= srcHi;
    if (!readable) {
      if (first >= 0) break;
      continue;
    }
    if (first < 0) first = j;
    for (std::int64_t i = range.begin; i < range.end; ++i) {
      const std::uint32_t w = filter == StretchFilter::Halftone ? WeightFor(i, jj, d, s) : 1;
      if (w == 0) continue;
      taps.source.push_back(static_cast<int>(srcStart + i));
      taps.weight.push_back(w);
    }
    taps.first.push_back(static_cast<int>(taps.source.size()));
  }
  taps.count = static_cast<int>(taps.first.size()) - 1;
  taps.destStart = destStart + std::max<std::int64_t>(first, 0);
  return taps;
}

std::optional<std::uint32_t> UniformResample(StretchFilter filter, const AxisTaps& xs, const AxisTaps& ys,
                                             const raster::Raster& src) {
  if (xs.count == 0 || ys.count == 0) return std::nullopt;
  if (filter == StretchFilter::Halftone && HalftoneOverflows(xs, ys)) return std::nullopt;
  std::uint32_t colour = 0;
  int checked = -1;  // neighbouring taps often read one row, which is checked once
  for (const int row : ys.source) {
    if (row == checked) continue;
    std::uint32_t pixel = 0;
    if (!src.RowIsUniform(row, &pixel) || (checked >= 0 && pixel != colour)) return std::nullopt;
    colour = pixel;
    checked = row;
  }
  return colour & raster::kColorMask;
}

bool Resample(StretchFilter filter, const AxisTaps& xs, const AxisTaps& ys, const raster::Raster& src,
              const RowSink& sink) {
  if (xs.count == 0 || ys.count == 0) return true;
  if (filter == StretchFilter::Halftone) return Halftone(xs, ys, src, sink);
  Sample(filter, xs, ys, src, sink);
  return true;
}

}  // namespace platform::gdi
