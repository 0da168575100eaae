#include "pixels/filters.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "pixels/pixel_buffer.h"
#include "pixels/row_split.h"
#include "pixels/working_copy.h"

namespace {

using ByteMap = std::array<BYTE, 256>;

template <typename Rule>
constexpr ByteMap MapOf(Rule rule) {
  ByteMap map{};
  for (int v = 0; v < 256; ++v) map[static_cast<std::size_t>(v)] = static_cast<BYTE>(rule(v));
  return map;
}

// Lightens each byte along a parabola before the blur: dark values rise most.
constexpr ByteMap kLiftTowardsWhite = MapOf([](int v) { return 255 - ((255 - v) * (255 - v)) / 255; });
// After the blur: clamp(trunc(v * 0.9 + 25.5)), which stays within 25..255 for a byte.
const ByteMap kWhitenFinish = MapOf([](int v) { return std::clamp(static_cast<int>(v * 0.9 + 25.5), 0, 255); });

// A sum of nine bytes divided by 9 as a multiplication: exact over the whole range.
constexpr int DivideBy9(int sum) { return (sum * 7282) >> 16; }
constexpr bool DivideBy9IsExact() {
  for (int sum = 0; sum <= 9 * 255; ++sum) {
    if (DivideBy9(sum) != sum / 9) return false;
  }
  return true;
}
static_assert(DivideBy9IsExact());

// Each rule computes one row of output bytes from the working copy's rows above (up),
// level with (mid) and below (down) it, each pointing at the copy of the row's first
// byte, so that a byte's left and right neighbours lie 3 bytes to either side. The
// three bytes of a pixel are independent, so the rows are plain byte arrays, which
// the compiler turns into vector code.
using RowRule = void (*)(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count);

void WhitenRow(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count) {
  for (int i = 0; i < count; ++i) {
    const int blurred = (up[i - 3] + 2 * up[i] + up[i + 3] + 2 * mid[i - 3] + 4 * mid[i] + 2 * mid[i + 3] +
                         down[i - 3] + 2 * down[i] + down[i + 3]) >>
                        4;
    out[i] = static_cast<BYTE>(blurred);
  }
  for (int i = 0; i < count; ++i) out[i] = kWhitenFinish[out[i]];
}

void SharpenRow(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count) {
  for (int i = 0; i < count; ++i) {
    const int v = (36 * mid[i] - up[i] - down[i] - mid[i - 3] - mid[i + 3]) / 32;
    out[i] = static_cast<BYTE>(v < 0 ? 0 : v > 255 ? 255 : v);
  }
}

void SmoothRow(const BYTE* up, const BYTE* mid, const BYTE* down, BYTE* out, int count) {
  for (int i = 0; i < count; ++i) {
    const int sum = up[i - 3] + up[i] + up[i + 3] + mid[i - 3] + mid[i] + mid[i + 3] + down[i - 3] + down[i] +
                    down[i + 3];
    out[i] = static_cast<BYTE>(DivideBy9(sum));
  }
}

void MapRows(const PixelRect& rect, const ByteMap& map) {
  const int count = rect.width() * 3;
  SplitRows(rect, [&](int first, int end) {
    for (int y = first; y < end; ++y) {
      BYTE* p = rect.At(0, y);
      for (int i = 0; i < count; ++i) p[i] = map[p[i]];
    }
  });
}

// The rectangle's pixels at one moment, to recognise when the filter brings them back.
class SavedPixels {
 public:
  explicit SavedPixels(const PixelRect& rect)
      : rect_(rect), rowBytes_(static_cast<std::size_t>(rect.width()) * 3),
        bytes_(AllocatePixels(rowBytes_ * static_cast<std::size_t>(rect.height()))) {}
  bool valid() const { return bytes_ != nullptr; }
  void Save() {
    for (int y = 0; y < rect_.height(); ++y) std::memcpy(Row(y), rect_.At(0, y), rowBytes_);
  }
  bool Matches() const {
    for (int y = 0; y < rect_.height(); ++y) {
      if (std::memcmp(Row(y), rect_.At(0, y), rowBytes_) != 0) return false;
    }
    return true;
  }

 private:
  BYTE* Row(int y) const { return bytes_.get() + rowBytes_ * static_cast<std::size_t>(y); }
  PixelRect rect_;
  std::size_t rowBytes_;
  std::unique_ptr<BYTE[]> bytes_;
};

// Runs `step` `steps` times, or fewer with the same result: a step depends only on the
// rectangle's pixels, so once they repeat an earlier step's they go round the same
// cycle for ever (a step that changes nothing is a cycle of one). Repeats are found by
// Brent's method: one saved copy, compared byte for byte after every step and moved
// up whenever the distance reaches the next power of two; on a repeat the remaining
// steps skip whole cycles. The saved copy is only worth having from three steps on,
// and without memory for it every step runs.
template <typename Step>
void RunSteps(const PixelRect& rect, int steps, Step&& step) {
  if (steps < 1) return;
  SavedPixels saved(steps > 2 ? rect : PixelRect{});
  if (!saved.valid() || steps <= 2) {
    for (int i = 0; i < steps; ++i) step();
    return;
  }
  saved.Save();
  long power = 1;
  long distance = 0;
  for (int done = 0; done < steps;) {
    step();
    ++done;
    ++distance;
    if (done == steps) return;
    if (saved.Matches()) {
      const long rest = (steps - done) % distance;
      for (long i = 0; i < rest; ++i) step();
      return;
    }
    if (distance == power) {
      saved.Save();
      power *= 2;
      distance = 0;
    }
  }
}

// Runs `steps` rounds of a neighbourhood filter: each round (after `lift`, when given,
// has changed the rectangle in place) refills the working copy from the rectangle and
// computes every row from it. The copy is requested before the step count is looked
// at, so a count below 1 can still run out of memory; an empty rectangle needs no copy
// at all.
void RunNeighbourhoodFilter(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory,
                            RowRule rule, const ByteMap* lift = nullptr) {
  if (rect.empty()) return;
  WorkingCopy copy(rect);
  if (!copy.valid()) {
    if (outOfMemory) outOfMemory();
    return;
  }
  const int count = rect.width() * 3;
  RunSteps(rect, steps, [&] {
    if (lift) MapRows(rect, *lift);
    copy.Refill();
    SplitRows(rect, [&](int first, int end) {
      for (int y = first; y < end; ++y) {
        const BYTE* mid = copy.Around(0, y);
        rule(mid - copy.rowBytes(), mid, mid + copy.rowBytes(), rect.At(0, y), count);
      }
    });
  });
}

}  // namespace

void ApplyFilters(const PixelRect& rect, const AdjustmentSettings& settings,
                  const OutOfMemoryHandler& outOfMemory) {
  WhitenPixels(rect, settings.whitenSteps, outOfMemory);
  SharpenPixels(rect, settings.sharpenSteps, outOfMemory);
  SmoothPixels(rect, settings.smoothSteps, outOfMemory);
  if (settings.invert) InvertPixels(rect);
  if (settings.gray) GrayPixels(rect);
}

void WhitenPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunNeighbourhoodFilter(rect, steps, outOfMemory, WhitenRow, &kLiftTowardsWhite);
}

void SharpenPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunNeighbourhoodFilter(rect, steps, outOfMemory, SharpenRow);
}

void SmoothPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunNeighbourhoodFilter(rect, steps, outOfMemory, SmoothRow);
}

void InvertPixels(const PixelRect& rect) {
  static constexpr ByteMap kInverse = MapOf([](int v) { return 255 - v; });
  MapRows(rect, kInverse);
}

void GrayPixels(const PixelRect& rect) {
  ForEachPixel(rect, [](BYTE* pixel, int, int) {
    const BYTE g = static_cast<BYTE>((pixel[2] * 0.299 + pixel[0] * 0.114) + pixel[1] * 0.587);
    pixel[0] = pixel[1] = pixel[2] = g;
  });
}
