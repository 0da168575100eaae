// The edge-replicated copy the plain reference filters read from (reference_passes.h),
// as the rules describe it: the rectangle plus a one-pixel border, without row
// padding, so that every pixel of the rectangle has all eight neighbours and the
// filter can write the buffer while reading the copy. The filters themselves keep only
// the rows of it they look at (neighbourhood.h).
#pragma once

#include <memory>

#include "pixels/pixel_rect.h"

class WorkingCopy {
 public:
  // Asks for (w + 2) x (h + 2) pixels for the rectangle; valid() tells whether the
  // memory was granted.
  explicit WorkingCopy(const PixelRect& rect);

  bool valid() const { return pixels_ != nullptr; }
  // Copies the rectangle's current pixels in and repeats its edge pixels around them.
  void Refill();
  // The copy of rectangle pixel (x, y); its neighbours lie 3 bytes to either side and
  // rowBytes() above and below.
  const BYTE* Around(int x, int y) const {
    return pixels_.get() + static_cast<std::ptrdiff_t>(y + 1) * rowBytes_ +
           static_cast<std::ptrdiff_t>(x + 1) * 3;
  }
  std::ptrdiff_t rowBytes() const { return rowBytes_; }

 private:
  PixelRect rect_;
  std::ptrdiff_t rowBytes_ = 0;
  std::unique_ptr<BYTE[]> pixels_;
};
