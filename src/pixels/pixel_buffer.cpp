#include "pixels/pixel_buffer.h"

#include <new>

namespace {

std::size_t g_limit = kDefaultPixelBufferLimit;

// The memory of the last buffer released, for the next one of about its size.
struct SpareBlock {
  platform::GraphicsBytes bytes;
  std::size_t size = 0;
} g_spare;

// Memory kept only for speed goes first when the budget runs short.
void DropSpare() {
  g_spare.bytes = platform::GraphicsBytes();
  g_spare.size = 0;
}

platform::GraphicsBytes TakeSpareOr(std::size_t bytes) {
  if (g_spare.bytes && g_spare.size >= bytes && g_spare.size - bytes <= g_spare.size / 4) {
    g_spare.size = 0;
    return std::move(g_spare.bytes);
  }
  return AllocatePixels(bytes);
}

bool BitmapSize(HBITMAP bitmap, int* width, int* height) {
  DIBSECTION section{};
  if (!bitmap || GetObjectA(bitmap, sizeof section, &section) == 0) return false;
  *width = section.dsBm.bmWidth;
  *height = section.dsBm.bmHeight;
  return true;
}

}  // namespace

bool WithinPixelLimit(std::size_t bytes) { return bytes <= g_limit; }

platform::GraphicsBytes AllocatePixels(std::size_t bytes) {
  if (!WithinPixelLimit(bytes)) return {};
  return platform::GraphicsBytes::Allocate(bytes);
}

void SetPixelBufferLimit(std::size_t bytes) { g_limit = bytes; }

PixelBuffer::PixelBuffer(int width, int height)
    : width_(width), height_(height), stride_(static_cast<int>(platform::DibRowStride(width, 24))) {
  const std::size_t size = static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height);
  // The limit holds for recycled memory too.
  if (WithinPixelLimit(size)) bytes_ = TakeSpareOr(size);
}

PixelBuffer::~PixelBuffer() {
  if (!bytes_) return;
  g_spare.bytes = std::move(bytes_);
  platform::SetGraphicsMemoryReclaimer(DropSpare);
  g_spare.size = static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height_);
}

PixelBuffer& PixelBuffer::operator=(PixelBuffer&& other) noexcept {
  if (this != &other) {
    PixelBuffer released(std::move(*this));
    bytes_ = std::move(other.bytes_);
    width_ = other.width_;
    height_ = other.height_;
    stride_ = other.stride_;
  }
  return *this;
}

PixelRect PixelBuffer::Area(const RECT& rect) const {
  const int left = std::clamp(static_cast<int>(rect.left), 0, width_);
  const int right = std::clamp(static_cast<int>(rect.right), left, width_);
  const int top = std::clamp(static_cast<int>(rect.top), 0, height_);
  const int bottom = std::clamp(static_cast<int>(rect.bottom), top, height_);
  return PixelRect{data(), left, height_ - bottom, right, height_ - top, stride_};
}

bool PixelBufferWouldFit(HBITMAP bitmap) {
  int width = 0;
  int height = 0;
  return BitmapSize(bitmap, &width, &height) &&
         WithinPixelLimit(static_cast<std::size_t>(platform::DibRowStride(width, 24)) *
                          static_cast<std::size_t>(height));
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
  // Rows of another size would be read past the buffer's end.
  if (width != buffer.width() || height != buffer.height()) return;
  const BITMAPINFO info = platform::Dib24Info(width, height);
  SetDIBits(dc, bitmap, 0, static_cast<UINT>(height), buffer.data(), &info, DIB_RGB_COLORS);
}
