// Pictures the script host writes: a bitmap read back through GetDIBits as 24-bit
// bottom-up rows, saved as an uncompressed 24-bit BMP or as a PNG.
#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"

namespace script {

struct DibPicture {
  int width = 0;
  int height = 0;
  int stride = 0;          // bytes a row, a multiple of 4
  std::vector<BYTE> bits;  // bottom-up rows of B, G, R
};

// The bitmap's pixels, or an empty picture (width 0) when the handle is not
// a bitmap or GetDIBits fails.
DibPicture ReadDibPicture(HBITMAP bitmap);

// All return false when the file cannot be written.
bool WriteBmpFile(const DibPicture& picture, const std::string& path);
bool WritePngFile(const DibPicture& picture, const std::string& path);
// A PNG when the path ends in ".png", a BMP otherwise.
bool WritePictureFile(const DibPicture& picture, const std::string& path);

}  // namespace script
