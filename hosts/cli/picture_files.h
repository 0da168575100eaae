// Pictures the script host writes: a bitmap's pixels as a 24-bit BMP, or as a PNG
// when the file name ends in .png.
#pragma once

#include <string>

#include "platform/platform.h"

namespace script {

enum class PictureResult { Written, NoPicture, NotWritten };

// Reads the bitmap's pixels (NoPicture when it is not a readable bitmap) and writes
// them to the path as it stands.
PictureResult WritePictureFile(HBITMAP bitmap, const std::string& path);

}  // namespace script
