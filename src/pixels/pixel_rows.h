// The rows a pixel pass works on, wherever they are kept: a rectangle of a 24-bit
// buffer (three bytes a pixel, read and written in place), or rows of 32-bit bitmaps
// (four bytes a pixel, the fourth 0) read from one bitmap and written to another, so
// that a rebuild goes from the original picture to the image surface with no buffer
// between. Bytes 0, 1 and 2 of a pixel are blue, green and red either way. The rows
// may run top-down or bottom-up: every pass is the same read either way up.
#pragma once

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
};

PixelRows RowsOf(const PixelRect& rect);
PixelRows RowsOf(const platform::BitmapRows& rows);
