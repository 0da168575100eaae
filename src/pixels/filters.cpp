#include "pixels/filters.h"

#include <algorithm>

#include "pixels/working_copy.h"

namespace {

BYTE ClampByte(int value) { return static_cast<BYTE>(std::clamp(value, 0, 255)); }

// Runs `steps` rounds of a neighbourhood filter: each round refills the working copy
// from the rectangle and replaces every byte by newByte(copy of that byte, offset of
// the next row in the copy); `beforeRefill`, when given, first changes the rectangle
// in place. The copy is requested before the step count is looked at, so a count
// below 1 can still run out of memory; an empty rectangle needs no copy at all.
template <typename NewByte>
void RunNeighbourhoodFilter(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory,
                            NewByte&& newByte, void (*beforeRefill)(const PixelRect&) = nullptr) {
  if (rect.empty()) return;
  WorkingCopy copy(rect);
  if (!copy.valid()) {
    if (outOfMemory) outOfMemory();
    return;
  }
  for (int step = 0; step < steps; ++step) {
    if (beforeRefill) beforeRefill(rect);
    copy.Refill();
    ForEachPixel(rect, [&](BYTE* pixel, int x, int y) {
      const BYTE* source = copy.Around(x, y);
      for (int i = 0; i < 3; ++i) pixel[i] = newByte(source + i, copy.rowBytes());
    });
  }
}

template <typename NewByte>
void MapEveryByte(const PixelRect& rect, NewByte&& newByte) {
  ForEachPixel(rect, [&](BYTE* pixel, int, int) {
    for (int i = 0; i < 3; ++i) pixel[i] = newByte(pixel[i]);
  });
}

// Lightens each byte along a parabola before the blur: dark values rise most.
void LiftTowardsWhite(const PixelRect& rect) {
  MapEveryByte(rect, [](int v) { return static_cast<BYTE>(255 - ((255 - v) * (255 - v)) / 255); });
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
  RunNeighbourhoodFilter(
      rect, steps, outOfMemory,
      [](const BYTE* c, std::ptrdiff_t row) {
        const int blurred = (c[-row - 3] + 2 * c[-row] + c[-row + 3] + 2 * c[-3] + 4 * c[0] + 2 * c[3] +
                             c[row - 3] + 2 * c[row] + c[row + 3]) >>
                            4;
        return ClampByte(static_cast<int>(blurred * 0.9 + 25.5));
      },
      LiftTowardsWhite);
}

void SharpenPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunNeighbourhoodFilter(rect, steps, outOfMemory, [](const BYTE* c, std::ptrdiff_t row) {
    return ClampByte((36 * c[0] - c[-row] - c[row] - c[-3] - c[3]) / 32);
  });
}

void SmoothPixels(const PixelRect& rect, int steps, const OutOfMemoryHandler& outOfMemory) {
  RunNeighbourhoodFilter(rect, steps, outOfMemory, [](const BYTE* c, std::ptrdiff_t row) {
    int sum = 0;
    for (std::ptrdiff_t dy : {-row, std::ptrdiff_t{0}, row}) sum += c[dy - 3] + c[dy] + c[dy + 3];
    return static_cast<BYTE>(sum / 9);
  });
}

void InvertPixels(const PixelRect& rect) {
  MapEveryByte(rect, [](int v) { return static_cast<BYTE>(255 - v); });
}

void GrayPixels(const PixelRect& rect) {
  ForEachPixel(rect, [](BYTE* pixel, int, int) {
    const BYTE g = static_cast<BYTE>((pixel[2] * 0.299 + pixel[0] * 0.114) + pixel[1] * 0.587);
    pixel[0] = pixel[1] = pixel[2] = g;
  });
}
