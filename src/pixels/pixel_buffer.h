// The 24-bit pixel buffer every pixel pass works on: bottom-up rows of blue, green,
// red bytes, each row padded to a multiple of 4 bytes.
#pragma once

#include <cstddef>

#include "platform/gdi.h"

// Bytes in one row of a 24-bit buffer `width` pixels wide.
inline constexpr int PixelRowStride(int width) { return static_cast<int>(platform::DibRowStride(width, 24)); }

// The header that describes a whole bitmap of that size as such a buffer.
inline BITMAPINFOHEADER PixelBufferHeader(int width, int height) {
  BITMAPINFOHEADER header{};
  header.biSize = sizeof(BITMAPINFOHEADER);
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = 24;
  header.biCompression = BI_RGB;
  return header;
}

// A buffer pixel as a COLORREF, and a COLORREF stored into a buffer pixel.
inline COLORREF PixelColor(const BYTE* pixel) {
  return (static_cast<COLORREF>(pixel[0]) << 16) | (static_cast<COLORREF>(pixel[1]) << 8) | pixel[2];
}
inline void StorePixelColor(BYTE* pixel, COLORREF color) {
  pixel[0] = GetBValue(color);
  pixel[1] = GetGValue(color);
  pixel[2] = GetRValue(color);
}

// Pixel buffers come from here so that every pass shares one size limit: a request
// above it fails as out of memory instead of exhausting the process. The limit is
// adjustable so that the out-of-memory paths can be exercised.
BYTE* AllocatePixelBuffer(std::size_t bytes);
void FreePixelBuffer(BYTE* buffer);
void SetPixelBufferLimit(std::size_t bytes);
std::size_t PixelBufferLimit();
inline constexpr std::size_t kDefaultPixelBufferLimit = std::size_t{1} << 30;
