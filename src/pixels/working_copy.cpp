#include "pixels/working_copy.h"

#include <algorithm>
#include <cstring>

#include "pixels/pixel_buffer.h"

WorkingCopy::WorkingCopy(const PixelRect& rect) : rect_(rect) {
  if (rect.empty()) return;
  rowBytes_ = static_cast<std::ptrdiff_t>(rect.width() + 2) * 3;
  pixels_ = AllocatePixels(static_cast<std::size_t>(rowBytes_) * static_cast<std::size_t>(rect.height() + 2));
}

void WorkingCopy::Refill() {
  if (!valid()) return;
  const int w = rect_.width();
  const int h = rect_.height();
  for (int j = 0; j < h + 2; ++j) {
    const int y = std::clamp(j - 1, 0, h - 1);
    BYTE* row = pixels_.get() + static_cast<std::ptrdiff_t>(j) * rowBytes_;
    std::memcpy(row + 3, rect_.At(0, y), static_cast<std::size_t>(w) * 3);
    std::memcpy(row, row + 3, 3);
    std::memcpy(row + static_cast<std::ptrdiff_t>(w + 1) * 3, row + static_cast<std::ptrdiff_t>(w) * 3, 3);
  }
}
