// A rectangle of a 24-bit pixel buffer as the pixel passes address it: first column
// x0, first buffer row y0 (row 0 is the lowest row of the picture), exclusive ends.
#pragma once

#include <cstddef>
#include <functional>

#include "platform/platform.h"

struct PixelRect {
  BYTE* buffer = nullptr;
  int x0 = 0;
  int y0 = 0;
  int x1 = 0;
  int y1 = 0;
  int stride = 0;

  int width() const { return x1 - x0; }
  int height() const { return y1 - y0; }
  bool empty() const { return buffer == nullptr || width() <= 0 || height() <= 0; }
  // The first byte of pixel (x, y) counted from the rectangle's first pixel.
  BYTE* At(int x, int y) const {
    return buffer + static_cast<std::ptrdiff_t>(y0 + y) * stride + static_cast<std::ptrdiff_t>(x0 + x) * 3;
  }
};

// Calls visit(pixel, x, y) for every pixel of the rectangle, x and y counted from its
// first pixel.
template <typename Visit>
void ForEachPixel(const PixelRect& rect, Visit&& visit) {
  if (rect.empty()) return;
  for (int y = 0; y < rect.height(); ++y) {
    BYTE* pixel = rect.At(0, y);
    for (int x = 0; x < rect.width(); ++x, pixel += 3) visit(pixel, x, y);
  }
}

// Called when a pass cannot get the memory it needs; the pass then skips its work.
using OutOfMemoryHandler = std::function<void()>;
