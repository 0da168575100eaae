#include "imageio/png_file_writer.h"

#include <png.h>

#include <cstdio>
#include <vector>

namespace imageio {
namespace {

// libpng reports errors by jumping back here, so nothing in this frame may need a
// destructor. The rows go out top-down, unfiltered; the compression buffer holds the
// whole stream, so that it is written as one IDAT chunk.
bool WriteImage(png_structp png, png_infop info, std::FILE* file, int width, int height, png_bytepp rows,
                std::size_t bufferSize) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_init_io(png, file);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
               PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  png_set_compression_level(png, 6);
  png_set_compression_buffer_size(png, bufferSize);
  png_set_bgr(png);
  png_write_info(png, info);
  png_write_image(png, rows);
  png_write_end(png, nullptr);
  return true;
}

}  // namespace

bool WritePngFile(const std::string& path, int width, int height, int stride, const std::uint8_t* rows) {
  std::vector<png_bytep> topDown(static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    topDown[static_cast<std::size_t>(y)] = const_cast<png_bytep>(
        rows + static_cast<std::size_t>(height - 1 - y) * static_cast<std::size_t>(stride));
  }
  // Room for the deflated rows even when they do not shrink.
  const std::size_t raw = (static_cast<std::size_t>(width) * 3 + 1) * static_cast<std::size_t>(height);
  const std::size_t bufferSize = raw + raw / 1000 + 64;

  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  const bool written = info && WriteImage(png, info, file, width, height, topDown.data(), bufferSize);
  png_destroy_write_struct(&png, &info);
  const bool closed = std::fclose(file) == 0;
  return written && closed;
}

}  // namespace imageio
