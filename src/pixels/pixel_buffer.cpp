#include "pixels/pixel_buffer.h"

#include <algorithm>
#include <new>

namespace {

std::size_t g_limit = kDefaultPixelBufferLimit;

bool BitmapSize(HBITMAP bitmap, int* width, int* height) {
  DIBSECTION section{};
  if (!bitmap || GetObjectA(bitmap, sizeof section, &section) == 0) return false;
  *width = section.dsBm.bmWidth;
  *height = section.dsBm.bmHeight;
  return true;
}

}  // namespace

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

PixelBuffer ReadBitmapPixels(HDC dc, HBITMAP bitmap) {
  int width = 0;
  int height = 0;
  if (!dc || !BitmapSize(bitmap, &width, &height)) return PixelBuffer();
  PixelBuffer buffer(width, height);
  if (!buffer) return buffer;
  BITMAPINFO info = platform::Dib24Info(width, height);
  GetDIBits(dc, bitmap, 0, static_cast<UINT>(height), buffer.data(), &info, DIB_RGB_COLORS);
  return buffer;
}

void WriteBitmapPixels(HDC dc, HBITMAP bitmap, const PixelBuffer& buffer) {
  int width = 0;
  int height = 0;
  if (!buffer || !dc || !BitmapSize(bitmap, &width, &height)) return;
  const BITMAPINFO info = platform::Dib24Info(width, height);
  SetDIBits(dc, bitmap, 0, static_cast<UINT>(height), buffer.data(), &info, DIB_RGB_COLORS);
}
