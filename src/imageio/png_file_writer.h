// Pictures written as PNG files through libpng: truecolour, 8 bits a channel, no
// interlacing, unfiltered rows in one deflate stream at level 6.
#pragma once

#include <cstdint>
#include <string>

namespace imageio {

// Writes a 24-bit picture (bottom-up rows of blue, green and red bytes, `stride`
// bytes apart) to the path as it stands; false when the file cannot be written
// completely.
bool WritePngFile(const std::string& path, int width, int height, int stride, const std::uint8_t* rows);

}  // namespace imageio
