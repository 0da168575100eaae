#include "pixels/working_copy.h"

#include <algorithm>
#include <cstring>

#include "pixels/pixel_buffer.h"

WorkingCopy::WorkingCopy(const PixelRect& rect, int border) : rect_(rect), border_(std::max(border, 0)) {
  if (rect.empty()) return;
  rowBytes_ = static_cast<std::ptrdiff_t>(rect.width() + 2 * border_) * 3;
  pixels_ = AllocatePixels(static_cast<std::size_t>(rowBytes_) *
                           static_cast<std::size_t>(rect.height() + 2 * border_));
}

void WorkingCopy::Refill() {
  if (!valid()) return;
  const int w = rect_.width();
  const int h = rect_.height();
  const std::ptrdiff_t inside = static_cast<std::ptrdiff_t>(border_) * 3;
  const std::ptrdiff_t lastPixel = inside + static_cast<std::ptrdiff_t>(w - 1) * 3;
  for (int j = 0; j < h + 2 * border_; ++j) {
    const int y = std::clamp(j - border_, 0, h - 1);
    BYTE* row = pixels_.get() + static_cast<std::ptrdiff_t>(j) * rowBytes_;
    std::memcpy(row + inside, rect_.At(0, y), static_cast<std::size_t>(w) * 3);
    for (int b = 0; b < border_; ++b) {
      std::memcpy(row + static_cast<std::ptrdiff_t>(b) * 3, row + inside, 3);
      std::memcpy(row + lastPixel + static_cast<std::ptrdiff_t>(b + 1) * 3, row + lastPixel, 3);
    }
  }
}
