// Colour bitmaps made from, and read back as, COLORREFs: row by row, top row first.
#pragma once

#include <vector>

#include "platform/platform.h"

// A bitmap compatible with `compatible` (with the screen when null) holding `pixels`.
inline HBITMAP MakeBitmap(HDC compatible, int width, int height, const std::vector<COLORREF>& pixels) {
  HDC screen = compatible != nullptr ? nullptr : GetDC(nullptr);
  HBITMAP bitmap = CreateCompatibleBitmap(compatible != nullptr ? compatible : screen, width, height);
  HDC dc = CreateCompatibleDC(compatible);
  HGDIOBJ previous = SelectObject(dc, bitmap);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) SetPixel(dc, x, y, pixels[static_cast<size_t>(y * width + x)]);
  }
  SelectObject(dc, previous);
  DeleteDC(dc);
  if (screen != nullptr) ReleaseDC(nullptr, screen);
  return bitmap;
}

// Every pixel of a colour bitmap; empty for none.
inline std::vector<COLORREF> BitmapColors(HBITMAP bitmap) {
  int width = 0, height = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(bitmap, &width, &height);
  std::vector<COLORREF> colors;
  for (int i = 0; pixels != nullptr && i < width * height; ++i) {
    colors.push_back(RGB(pixels[i] >> 16 & 0xFF, pixels[i] >> 8 & 0xFF, pixels[i] & 0xFF));
  }
  return colors;
}
