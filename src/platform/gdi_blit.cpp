// BitBlt, StretchBlt, TransparentBlt and CopyImage.
#include <algorithm>
#include <cstring>
#include <optional>
#include <type_traits>
#include <vector>

#include "platform/gdi_objects.h"
#include "platform/gdi_stretch.h"

using namespace platform::gdi;
namespace raster = platform::raster;

namespace {

// The format rule between a source and a destination DC.
raster::Conversion ConversionFor(const Surface& dest, const DcObject& destDc, const Surface& src,
                                 const DcObject& srcDc) {
  raster::Conversion conversion;
  if (src.mono() && !dest.mono()) {
    conversion.kind = raster::Conversion::Kind::MonoToColor;
    conversion.one = raster::PixelOf(destDc.bkColor);
    conversion.zero = raster::PixelOf(destDc.textColor);
  } else if (!src.mono() && dest.mono()) {
    conversion.kind = raster::Conversion::Kind::ColorToMono;
    conversion.key = raster::PixelOf(srcDc.bkColor);
  }
  return conversion;
}

// Combines source-format rows with destination rows: format conversion, then the
// raster operation with the destination DC's brush as the pattern.
class RowCombiner {
 public:
  RowCombiner(raster::Conversion conversion, std::uint8_t rop, std::uint32_t pattern)
      : conversion_(conversion), rop_(rop), pattern_(pattern) {}

  void Combine(std::uint32_t* dest, const std::uint32_t* src, int count) {
    if (!src) {
      raster::ApplyRop(rop_, nullptr, pattern_, dest, count);
      return;
    }
    if (rop_ == 0xCC && conversion_.kind == raster::Conversion::Kind::None) {
      std::memmove(dest, src, static_cast<std::size_t>(count) * sizeof(std::uint32_t));
      return;
    }
    // Converting into scratch first also makes overlapping rows of one raster safe.
    scratch_.resize(static_cast<std::size_t>(count));
    raster::ConvertRow(conversion_, src, scratch_.data(), count);
    raster::ApplyRop(rop_, scratch_.data(), pattern_, dest, count);
  }

 private:
  raster::Conversion conversion_;
  std::uint8_t rop_;
  std::uint32_t pattern_;
  std::vector<std::uint32_t> scratch_;
};

struct Run {
  std::int64_t dest;
  std::int64_t src;
  std::int64_t count;
};

// Shrinks a run so that both ends stay inside their bounds.
Run ClipRun(Run run, std::int64_t destLo, std::int64_t destHi, std::int64_t srcLo, std::int64_t srcHi) {
  const std::int64_t lo = std::max({std::int64_t{0}, destLo - run.dest, srcLo - run.src});
  const std::int64_t hi = std::min({run.count, destHi - run.dest, srcHi - run.src});
  if (hi <= lo) return {0, 0, 0};
  return {run.dest + lo, run.src + lo, hi - lo};
}

// The destination and, when the operation reads it, the source of a blit.
struct BlitEnds {
  DcObject* destDc = nullptr;
  Surface dest;
  DcObject* srcDc = nullptr;
  Surface src;
};

std::optional<BlitEnds> ResolveEnds(HDC dest, HDC src, bool needSource) {
  BlitEnds ends;
  ends.destDc = Lookup<DcObject>(dest);
  if (!ends.destDc) return std::nullopt;
  auto destSurface = SurfaceOf(*ends.destDc);
  if (!destSurface) return std::nullopt;
  ends.dest = *destSurface;
  if (!needSource) return ends;
  ends.srcDc = Lookup<DcObject>(src);
  if (!ends.srcDc) return std::nullopt;
  auto srcSurface = SurfaceOf(*ends.srcDc);
  if (!srcSurface) return std::nullopt;
  ends.src = *srcSurface;
  return ends;
}

StretchFilter FilterFor(int mode, const Surface& dest, const Surface& src) {
  switch (mode) {
    // Halftone averaging needs colour on both sides; with a monochrome bitmap involved
    // it samples like COLORONCOLOR.
    case HALFTONE:
      return dest.mono() || src.mono() ? StretchFilter::Nearest : StretchFilter::Halftone;
    case BLACKONWHITE:
      return StretchFilter::AndMerge;
    case WHITEONBLACK:
      return StretchFilter::OrMerge;
    default:
      return StretchFilter::Nearest;
  }
}

struct StretchPlan {
  AxisTaps xs;
  AxisTaps ys;
};

StretchPlan PlanStretch(StretchFilter filter, const Surface& dest, AxisRun dx, AxisRun dy, const Surface& src,
                        AxisRun sx, AxisRun sy) {
  return {PlanAxis(filter, dx, sx, dest.clip.left, dest.clip.right, src.clip.left, src.clip.right),
          PlanAxis(filter, dy, sy, dest.clip.top, dest.clip.bottom, src.clip.top, src.clip.bottom)};
}

}  // namespace

BOOL BitBlt(HDC dest, int x, int y, int width, int height, HDC src, int srcX, int srcY, DWORD rop) {
  const std::uint8_t index = raster::RopIndex(rop);
  const bool usesSource = raster::RopUsesSource(index);
  auto ends = ResolveEnds(dest, src, usesSource);
  if (!ends) return FALSE;
  // A pattern operation with the hollow brush has nothing to paint with.
  if (raster::RopUsesPattern(index) && !ends->destDc->draw.brushVisible) return TRUE;
  // Negative extents name the same rectangle from its other corner.
  std::int64_t w = width, h = height, x0 = x, y0 = y, sx0 = srcX, sy0 = srcY;
  if (w < 0) x0 += w, sx0 += w, w = -w;
  if (h < 0) y0 += h, sy0 += h, h = -h;
  const Surface& target = ends->dest;
  Run cols{target.originX + x0, sx0, w};
  Run rows{target.originY + y0, sy0, h};
  raster::Conversion conversion;
  const raster::Raster* source = nullptr;
  if (usesSource) {
    const Surface& from = ends->src;
    cols.src += from.originX;
    rows.src += from.originY;
    cols = ClipRun(cols, target.clip.left, target.clip.right, from.clip.left, from.clip.right);
    rows = ClipRun(rows, target.clip.top, target.clip.bottom, from.clip.top, from.clip.bottom);
    conversion = ConversionFor(target, *ends->destDc, from, *ends->srcDc);
    source = from.raster;
  } else {
    cols = ClipRun(cols, target.clip.left, target.clip.right, cols.src, cols.src + w);
    rows = ClipRun(rows, target.clip.top, target.clip.bottom, rows.src, rows.src + h);
  }
  if (cols.count == 0 || rows.count == 0) return TRUE;
  if (index == 0xCC && conversion.kind == raster::Conversion::Kind::None && source != target.raster) {
    target.raster->CopyRows(*source, static_cast<int>(cols.src), static_cast<int>(rows.src),
                            static_cast<int>(cols.dest), static_cast<int>(rows.dest),
                            static_cast<int>(cols.count), static_cast<int>(rows.count));
    return TRUE;
  }
  RowCombiner combiner(conversion, index, ends->destDc->draw.brushPixel);
  // Within one raster, walk rows away from the overlap so no source row is overwritten
  // before it is read.
  const bool upward = source == target.raster && rows.src < rows.dest;
  for (std::int64_t k = 0; k < rows.count; ++k) {
    const std::int64_t r = upward ? rows.count - 1 - k : k;
    // The destination row first: making it writable may move a band the source shares.
    std::uint32_t* destRow = target.raster->MutableRow(static_cast<int>(rows.dest + r)) + cols.dest;
    const std::uint32_t* srcRow = source ? source->Row(static_cast<int>(rows.src + r)) + cols.src : nullptr;
    combiner.Combine(destRow, srcRow, static_cast<int>(cols.count));
  }
  return TRUE;
}

// Equal sizes are an exact copy through BitBlt. Otherwise the DC's stretch mode picks
// the resampling; rectangles are (x, y) to (x + width, y + height) whichever the signs,
// and opposite signs of a source and destination extent mirror that axis.
BOOL StretchBlt(HDC dest, int x, int y, int width, int height, HDC src, int srcX, int srcY, int srcWidth,
                int srcHeight, DWORD rop) {
  if (width == srcWidth && height == srcHeight)
    return BitBlt(dest, x, y, width, height, src, srcX, srcY, rop);
  const std::uint8_t index = raster::RopIndex(rop);
  if (!raster::RopUsesSource(index)) return BitBlt(dest, x, y, width, height, src, srcX, srcY, rop);
  auto ends = ResolveEnds(dest, src, true);
  if (!ends) return FALSE;
  if (width == 0 || height == 0 || srcWidth == 0 || srcHeight == 0) return FALSE;
  if (raster::RopUsesPattern(index) && !ends->destDc->draw.brushVisible) return TRUE;
  const Surface& target = ends->dest;
  const Surface& from = ends->src;
  const StretchFilter filter = FilterFor(ends->destDc->stretchMode, target, from);
  const StretchPlan plan =
      PlanStretch(filter, target, {target.originX + x, width}, {target.originY + y, height}, from,
                  {from.originX + srcX, srcWidth}, {from.originY + srcY, srcHeight});
  RowCombiner combiner(ConversionFor(target, *ends->destDc, from, *ends->srcDc), index,
                       ends->destDc->draw.brushPixel);
  raster::Raster* out = target.raster;
  // A stretched area of one colour (an empty drawing layer taken to a new picture's
  // size) is a fill where the result does not depend on the destination: the
  // destination's bands stay single colours instead of every row being written.
  if (!raster::RopUsesDest(index)) {
    if (const auto uniform = UniformResample(filter, plan.xs, plan.ys, *from.raster)) {
      std::uint32_t pixel = 0;
      combiner.Combine(&pixel, &*uniform, 1);
      const int left = static_cast<int>(plan.xs.destStart);
      const int top = static_cast<int>(plan.ys.destStart);
      out->Fill(left, top, left + plan.xs.count, top + plan.ys.count, pixel);
      return TRUE;
    }
  }
  return Resample(filter, plan.xs, plan.ys, *from.raster,
                  [&](int dx, int dy, const std::uint32_t* values, int count) {
                    combiner.Combine(out->MutableRow(dy) + dx, values, count);
                  })
             ? TRUE
             : FALSE;
}

namespace {

// after[i] is from[i] unless that is the key, before[i] otherwise (`after` may be
// `before`). Every pixel is written, without a branch, so that the compiler makes
// vector code of it and scattered dots (a spray) cost what a copy does, where a
// branch per pixel would be mispredicted at random. The width and the key are
// parameters, which no row written through a pointer can alias.
void OverKey(std::uint32_t* after, const std::uint32_t* before, const std::uint32_t* from, int width,
             std::uint32_t key) {
  for (int i = 0; i < width; ++i) {
    // Both read first: a load made under the condition would keep the loop scalar.
    const std::uint32_t source = from[i];
    const std::uint32_t kept = before[i];
    after[i] = source != key ? source : kept;
  }
}

// Which source pixel destination pixel i of a transparent copy takes: the source's
// columns from `first` on (a copy of one size), or those a stretch's column map names.
struct ColumnRun {
  int first;
  std::uint32_t operator()(const std::uint32_t* row, int i) const { return row[first + i]; }
};
struct ColumnMap {
  const int* columns;
  std::uint32_t operator()(const std::uint32_t* row, int i) const { return row[columns[i]]; }
};

// The first of `count` destination pixels whose source pixel in `row` is not the key;
// `count` when there is none. A source row of one colour is not read.
template <typename Pick>
int FirstDrawn(const raster::Raster& in, int srcY, int count, std::uint32_t key, const Pick& pick) {
  std::uint32_t uniform = 0;
  if (in.RowIsUniform(srcY, &uniform)) return uniform == key ? count : 0;
  const std::uint32_t* row = in.Row(srcY);
  int first = 0;
  while (first < count && pick(row, first) == key) ++first;
  return first;
}

// One destination row of a transparent copy. A source row of the key colour is passed
// over without touching the destination, and the destination row is made writable
// only once a pixel of it is to be drawn.
template <typename Pick>
void TransparentRow(raster::Raster& out, const raster::Raster& in, int srcY, int destY, int destX, int count,
                    std::uint32_t key, const raster::Conversion& conversion, const Pick& pick) {
  const int first = FirstDrawn(in, srcY, count, key, pick);
  if (first == count) return;
  std::uint32_t* dest = out.MutableRow(destY) + destX;
  const std::uint32_t* row = in.Row(srcY);  // after MutableRow, which may replace a band
  if constexpr (std::is_same_v<Pick, ColumnRun>) {
    if (conversion.kind == raster::Conversion::Kind::None) {
      OverKey(dest + first, dest + first, row + pick.first + first, count - first, key);
      return;
    }
  }
  for (int i = first; i < count; ++i) {
    const std::uint32_t value = pick(row, i);
    if (value != key) dest[i] = raster::ConvertPixel(conversion, value);
  }
}

// An unconverted copy onto every column of `count` destination rows from destY, from
// rows of another raster from srcY and its column `column` on. Each stretch of rows
// within one destination band that draws anything is rewritten in one pass from the
// destination's old pixels (a band of the composition shared with the image surface
// is not copied first); a stretch whose source rows are all the key is left alone,
// as the row-by-row copy leaves them. False, nothing drawn, when a source band is
// packed: the row-by-row copy passes its runs of the key over whole.
bool TransparentWholeRows(raster::Raster& out, const raster::Raster& in, int srcY, int destY, int column,
                          int count, std::uint32_t key) {
  for (int k = 0; k < count; ++k) {
    if (in.BandPacked((srcY + k) >> raster::kBandShift)) return false;
  }
  const int width = out.width;
  const ColumnRun pick{column};
  for (int k = 0; k < count;) {
    const int y = destY + k;
    const int end = std::min(((y >> raster::kBandShift) + 1) << raster::kBandShift, destY + count);
    bool draws = false;
    for (int row = y; row < end && !draws; ++row)
      draws = FirstDrawn(in, srcY + row - destY, width, key, pick) < width;
    if (draws) {
      out.RewriteRows(y, end, [&](int row, const std::uint32_t* before, std::uint32_t* after) {
        OverKey(after, before, in.Row(srcY + row - destY) + column, width, key);
      });
    }
    k = end - destY;
  }
  return true;
}

// The same for an unconverted copy of columns [column, column + count) from a row
// known packed: runs of the key are passed over whole.
bool TransparentPackedRow(raster::Raster& out, const raster::Raster& in, int srcY, int destY, int destX,
                          int column, int count, std::uint32_t key) {
  const raster::PackedRows* packed = in.BandPacked(srcY >> raster::kBandShift).get();
  if (!packed) return false;
  const int row = srcY & (raster::kBandRows - 1);
  std::uint32_t* dest = nullptr;
  const int end = column + count;
  packed->ForEachPiece(row, [&](int x, int pieceCount, const std::uint32_t* pixels, bool repeated) {
    const int from = std::max(x, column);
    const int to = std::min(x + pieceCount, end);
    if (from >= to || (repeated && *pixels == key)) return;
    for (int i = from; i < to; ++i) {
      const std::uint32_t value = repeated ? *pixels : pixels[i - x];
      if (value == key) continue;
      if (!dest) dest = out.MutableRow(destY) + destX;
      dest[i - column] = value;
    }
  });
  return true;
}

}  // namespace

// Unequal sizes are stretched by nearest pixel first; the key is compared with the
// stretched source pixels. Negative extents fail.
BOOL TransparentBlt(HDC dest, int x, int y, int width, int height, HDC src, int srcX, int srcY, int srcWidth,
                    int srcHeight, UINT transparent) {
  auto ends = ResolveEnds(dest, src, true);
  if (!ends || width <= 0 || height <= 0 || srcWidth <= 0 || srcHeight <= 0) return FALSE;
  const Surface& target = ends->dest;
  const Surface& from = ends->src;
  const std::uint32_t key = raster::PixelOf(transparent & raster::kColorMask);
  const raster::Conversion conversion = ConversionFor(target, *ends->destDc, from, *ends->srcDc);
  raster::Raster& out = *target.raster;
  const raster::Raster& in = *from.raster;
  if (width == srcWidth && height == srcHeight) {
    const Run cols = ClipRun({target.originX + x, from.originX + srcX, width}, target.clip.left,
                             target.clip.right, from.clip.left, from.clip.right);
    const Run rows = ClipRun({target.originY + y, from.originY + srcY, height}, target.clip.top,
                             target.clip.bottom, from.clip.top, from.clip.bottom);
    const auto column = static_cast<int>(cols.src);
    const bool plain = conversion.kind == raster::Conversion::Kind::None && &in != &out;
    if (plain && cols.dest == 0 && cols.count == out.width &&
        TransparentWholeRows(out, in, static_cast<int>(rows.src), static_cast<int>(rows.dest), column,
                             static_cast<int>(rows.count), key))
      return TRUE;
    for (std::int64_t k = 0; k < rows.count; ++k) {
      if (plain &&
          TransparentPackedRow(out, in, static_cast<int>(rows.src + k), static_cast<int>(rows.dest + k),
                               static_cast<int>(cols.dest), column, static_cast<int>(cols.count), key))
        continue;
      TransparentRow(out, in, static_cast<int>(rows.src + k), static_cast<int>(rows.dest + k),
                     static_cast<int>(cols.dest), static_cast<int>(cols.count), key, conversion,
                     ColumnRun{column});
    }
    return TRUE;
  }
  // Nearest-pixel sampling reads one source pixel per destination pixel: the planned
  // taps are a column map and a row map.
  const StretchPlan plan =
      PlanStretch(StretchFilter::Nearest, target, {target.originX + x, width}, {target.originY + y, height},
                  from, {from.originX + srcX, srcWidth}, {from.originY + srcY, srcHeight});
  const int* columns = plan.xs.source.data();
  for (int j = 0; j < plan.ys.count; ++j) {
    TransparentRow(out, in, plan.ys.source[static_cast<std::size_t>(j)],
                   static_cast<int>(plan.ys.destStart + j), static_cast<int>(plan.xs.destStart),
                   plan.xs.count, key, conversion, ColumnMap{columns});
  }
  return TRUE;
}

// The copy is a DIB section when asked for (and the source is colour), a device bitmap
// of the source's kind otherwise; other sizes are stretched by nearest pixel.
HANDLE CopyImage(HANDLE image, UINT type, int cx, int cy, UINT flags) {
  const auto* original = Lookup<BitmapObject>(image);
  if (type != IMAGE_BITMAP || !original || cx < 0 || cy < 0) return nullptr;
  const raster::Raster& from = original->raster;
  const int width = cx ? cx : from.width;
  const int height = cy ? cy : from.height;
  const bool dib = (flags & LR_CREATEDIBSECTION) && !from.mono;
  HBITMAP copy = NewBitmap(width, height, from.mono, dib, height);
  if (!copy) return nullptr;
  raster::Raster& to = Lookup<BitmapObject>(copy)->raster;
  if (width == from.width && height == from.height) {
    to.ShareFrom(from);
    return copy;
  }
  const AxisTaps xs = PlanAxis(StretchFilter::Nearest, {0, width}, {0, from.width}, 0, width, 0, from.width);
  const AxisTaps ys =
      PlanAxis(StretchFilter::Nearest, {0, height}, {0, from.height}, 0, height, 0, from.height);
  Resample(StretchFilter::Nearest, xs, ys, from, [&](int dx, int dy, const std::uint32_t* values, int count) {
    std::memcpy(to.MutableRow(dy) + dx, values, static_cast<std::size_t>(count) * sizeof(std::uint32_t));
  });
  return copy;
}
