// Writes the benchmarks' generated pictures as JPEG files (RGB rows, top-down).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include <jpeglib.h>

inline bool WriteJpegFile(const std::uint8_t* rgb, int width, int height, int quality, const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  jpeg_compress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  jpeg_stdio_dest(&info, file);
  info.image_width = static_cast<JDIMENSION>(width);
  info.image_height = static_cast<JDIMENSION>(height);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    JSAMPROW row = const_cast<std::uint8_t*>(rgb) + static_cast<std::size_t>(info.next_scanline) * width * 3;
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  return std::fclose(file) == 0;
}
