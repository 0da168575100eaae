// The rows a pixel pass works on, wherever they are kept: a rectangle of a 24-bit
// buffer (three bytes a pixel, read and written in place), or rows of 32-bit bitmaps
// (four bytes a pixel, the fourth 0) read from one bitmap and written to another, so
// that a rebuild goes from the original picture to the image surface with no buffer
// between. Bytes 0, 1 and 2 of a pixel are blue, green and red either way. The rows
// may run top-down or bottom-up: every adjustment pass is the same read either way
// up. The effects that tell up from down (the convolution, the line patterns) take
// their rows bottom row first, as a 24-bit buffer holds them (`TurnOver`).
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "pixels/pixel_rect.h"

namespace platform {
struct BitmapRows;
}

struct PixelRows {
  std::vector<const BYTE*> in;  // where each row is read
  std::vector<BYTE*> out;       // where each row is written
  int width = 0;                // pixels in each row
  int bytesPerPixel = 3;
  bool inPlace = true;  // whether in and out are the same rows

  int height() const { return static_cast<int>(out.size()); }
  bool empty() const { return width <= 0 || out.empty(); }
  int rowBytes() const { return width * bytesPerPixel; }
  // Once a pass has written every row, the passes after it read what it wrote.
  void Written() {
    if (inPlace) return;
    in.assign(out.begin(), out.end());
    inPlace = true;
  }
  // Rows never written yet get the pixels they were to be read from: after this every
  // row of `out` holds its picture, whether or not a pass ran.
  void FillUnwritten();
  // The same rows in the opposite order.
  void TurnOver() {
    std::reverse(in.begin(), in.end());
    std::reverse(out.begin(), out.end());
  }
};

// The fourth byte of a 32-bit pixel stays 0 whatever a rule made of it.
inline void ClearFourthBytes(BYTE* row, int pixels) {
  for (int x = 0; x < pixels; ++x) {
    std::uint32_t p;
    std::memcpy(&p, row + 4 * x, 4);
    p &= 0x00FFFFFF;
    std::memcpy(row + 4 * x, &p, 4);
  }
}

PixelRows RowsOf(const PixelRect& rect);
PixelRows RowsOf(const platform::BitmapRows& rows);
