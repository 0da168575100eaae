// The 24-bit pixel buffer every pixel pass works on: bottom-up rows of blue, green,
// red bytes, each row padded to a multiple of 4 bytes.
#pragma once

#include <cstddef>
#include <memory>

#include "pixels/pixel_rect.h"
#include "platform/gdi.h"
#include "platform/graphics_memory.h"

// A buffer pixel as a COLORREF, and a COLORREF stored into a buffer pixel.
inline COLORREF PixelColor(const BYTE* pixel) {
  return (static_cast<COLORREF>(pixel[0]) << 16) | (static_cast<COLORREF>(pixel[1]) << 8) | pixel[2];
}
inline void StorePixelColor(BYTE* pixel, COLORREF color) {
  pixel[0] = GetBValue(color);
  pixel[1] = GetGValue(color);
  pixel[2] = GetRValue(color);
}

// Pixel memory comes from here so that every pass shares one size limit for a single
// request, besides the graphics-memory budget for all of them together: a request
// past either fails as out of memory (empty). The limit is adjustable so that the
// out-of-memory paths can be exercised.
platform::GraphicsBytes AllocatePixels(std::size_t bytes);
// Whether a request of that many bytes is within the limit.
bool WithinPixelLimit(std::size_t bytes);
void SetPixelBufferLimit(std::size_t bytes);
inline constexpr std::size_t kDefaultPixelBufferLimit = std::size_t{1} << 30;

// The pixels of a whole bitmap of width x height, owned. The size is known even when
// the memory could not be had; the buffer is then empty (no bytes). A released
// buffer's memory is kept for the next buffer of about its size: a picture's passes
// run again and again at one size, and fresh pages would have to be faulted in each
// time.
class PixelBuffer {
 public:
  PixelBuffer() = default;
  PixelBuffer(int width, int height);
  ~PixelBuffer();
  PixelBuffer(PixelBuffer&&) noexcept = default;
  PixelBuffer& operator=(PixelBuffer&& other) noexcept;

  explicit operator bool() const { return static_cast<bool>(bytes_); }
  BYTE* data() const { return bytes_.get(); }
  int width() const { return width_; }
  int height() const { return height_; }
  int stride() const { return stride_; }
  // The part of the buffer under a rectangle given in top-down bitmap coordinates,
  // kept inside the bitmap.
  PixelRect Area(const RECT& rect) const;
  // Every pixel of the bitmap.
  PixelRect Whole() const { return PixelRect{data(), 0, 0, width_, height_, stride_}; }

 private:
  platform::GraphicsBytes bytes_;
  int width_ = 0;
  int height_ = 0;
  int stride_ = 0;
};

// A bitmap's pixels read through a DC as a whole buffer, the padding after each row
// 0; empty when the DC or the bitmap is missing or the bitmap's header cannot be read
// (size 0 then), or when the memory cannot be had (size known then).
PixelBuffer ReadBitmapPixels(HDC dc, HBITMAP bitmap);
// Whether the memory limit grants a buffer of the bitmap's size; false for a bitmap
// whose header cannot be read.
bool PixelBufferWouldFit(HBITMAP bitmap);
// Replaces the bitmap's rows from a buffer of the bitmap's current size; nothing
// without a DC, a readable bitmap or pixels.
void WriteBitmapPixels(HDC dc, HBITMAP bitmap, const PixelBuffer& buffer);
