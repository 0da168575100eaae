// The edge-replicated copy the plain reference filters read from (reference_passes.h),
// as the rules describe it: the rectangle plus a border (one pixel unless asked for
// wider, as an n x n convolution needs n / 2), without row padding, so that every
// pixel of the rectangle has all its neighbours and the filter can write the buffer
// while reading the copy. The filters themselves keep only the rows of it they look at
// (neighbourhood.h, convolve.h).
#pragma once

#include <memory>

#include "pixels/pixel_rect.h"
#include "platform/graphics_memory.h"

class WorkingCopy {
 public:
  // Asks for (w + 2b) x (h + 2b) pixels for the rectangle, b the border; valid()
  // tells whether the memory was granted.
  explicit WorkingCopy(const PixelRect& rect, int border = 1);

  bool valid() const { return static_cast<bool>(pixels_); }
  // Copies the rectangle's current pixels in and repeats its edge pixels around them.
  void Refill();
  // The copy of rectangle pixel (x, y); its neighbours lie 3 bytes to either side and
  // rowBytes() above and below.
  const BYTE* Around(int x, int y) const {
    return pixels_.get() + static_cast<std::ptrdiff_t>(y + border_) * rowBytes_ +
           static_cast<std::ptrdiff_t>(x + border_) * 3;
  }
  std::ptrdiff_t rowBytes() const { return rowBytes_; }

 private:
  PixelRect rect_;
  int border_;
  std::ptrdiff_t rowBytes_ = 0;
  platform::GraphicsBytes pixels_;
};
