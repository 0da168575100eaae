#include "pixels/pixel_buffer.h"

#include <algorithm>
#include <new>

namespace {
std::size_t g_limit = kDefaultPixelBufferLimit;
}

std::unique_ptr<BYTE[]> AllocatePixels(std::size_t bytes) {
  if (bytes > g_limit) return nullptr;
  return std::unique_ptr<BYTE[]>(new (std::nothrow) BYTE[bytes == 0 ? 1 : bytes]);
}

void SetPixelBufferLimit(std::size_t bytes) { g_limit = bytes; }

PixelBuffer::PixelBuffer(int width, int height)
    : width_(width), height_(height), stride_(static_cast<int>(platform::DibRowStride(width, 24))) {
  bytes_ = AllocatePixels(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height));
}

PixelRect PixelBuffer::Area(const RECT& rect) const {
  const int left = std::clamp(static_cast<int>(rect.left), 0, width_);
  const int right = std::clamp(static_cast<int>(rect.right), left, width_);
  const int top = std::clamp(static_cast<int>(rect.top), 0, height_);
  const int bottom = std::clamp(static_cast<int>(rect.bottom), top, height_);
  return PixelRect{data(), left, height_ - bottom, right, height_ - top, stride_};
}
