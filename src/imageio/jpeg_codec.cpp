// JPEG through libjpeg-turbo, decoded straight into the caller's 32-bit storage.
#include <csetjmp>
// clang-format off
#include <cstdio>  // before jpeglib.h, which uses FILE without declaring it
#include <jpeglib.h>
// clang-format on

#include "imageio/picture_codecs.h"
#include "imageio/pixel_limits.h"

namespace imageio {
namespace {

// libjpeg reports fatal errors by calling error_exit, which must not return: it
// jumps back to the decoder, which then releases the decompressor.
struct JpegErrors {
  jpeg_error_mgr manager;
  std::jmp_buf jump;
};

[[noreturn]] void JumpOnError(j_common_ptr info) {
  std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->jump, 1);
}
// Warnings (such as data ending early, which decodes as grey) are not printed.
void IgnoreMessage(j_common_ptr) {}

bool IsCmyk(J_COLOR_SPACE space) { return space == JCS_CMYK || space == JCS_YCCK; }

// After a scanline: BGRX rows get a zero top byte; CMYK rows (stored inverted, as
// Adobe writes them) become RGB in place.
void FinishRow(std::uint8_t* row, int width, bool cmyk) {
  for (int x = 0; x < width; ++x, row += 4) {
    if (cmyk) {
      const unsigned k = row[3];
      const auto red = static_cast<std::uint8_t>(row[0] * k / 255);
      const auto green = static_cast<std::uint8_t>(row[1] * k / 255);
      const auto blue = static_cast<std::uint8_t>(row[2] * k / 255);
      row[0] = blue;
      row[1] = green;
      row[2] = red;
    }
    row[3] = 0;
  }
}

}  // namespace

bool DecodeJpeg(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate) {
  jpeg_decompress_struct info;
  JpegErrors errors;
  info.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = JumpOnError;
  errors.manager.output_message = IgnoreMessage;
  if (setjmp(errors.jump)) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, data, static_cast<unsigned long>(count));
  jpeg_read_header(&info, TRUE);
  const bool cmyk = IsCmyk(info.jpeg_color_space);
  info.out_color_space = cmyk ? JCS_CMYK : JCS_EXT_BGRX;
  const int width = static_cast<int>(info.image_width);
  const int height = static_cast<int>(info.image_height);
  std::uint32_t* pixels = PictureSizeAcceptable(width, height) ? allocate(width, height) : nullptr;
  if (!pixels) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_start_decompress(&info);
  while (info.output_scanline < info.output_height) {
    auto* row =
        reinterpret_cast<std::uint8_t*>(pixels + static_cast<std::size_t>(info.output_scanline) * width);
    JSAMPROW rows[1] = {row};
    jpeg_read_scanlines(&info, rows, 1);
    FinishRow(row, width, cmyk);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  return true;
}

}  // namespace imageio
