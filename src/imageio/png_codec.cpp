// PNG through libpng's simplified reader, which validates the stream and reports
// every error as a failed call.
#include <png.h>

#include "imageio/picture_codecs.h"
#include "imageio/pixel_limits.h"

namespace imageio {

bool DecodePng(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, data, count)) return false;
  const bool hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
  image.format = PNG_FORMAT_BGRA;
  // 16-bit samples without gamma information are sRGB like 8-bit ones (as other
  // viewers show them), not linear light.
  image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
  const int width = static_cast<int>(image.width);
  const int height = static_cast<int>(image.height);
  std::uint32_t* pixels = PictureSizeAcceptable(width, height) ? allocate(width, height) : nullptr;
  if (!pixels) {
    png_image_free(&image);
    return false;
  }
  if (!png_image_finish_read(&image, nullptr, pixels, 0, nullptr)) return false;
  const std::size_t total = static_cast<std::size_t>(width) * height;
  if (!hasAlpha) {
    for (std::size_t i = 0; i < total; ++i) pixels[i] &= 0x00FFFFFF;  // drop the filled-in opacity
    return true;
  }
  for (std::size_t i = 0; i < total; ++i) {
    const std::uint32_t bgra = pixels[i];
    const auto alpha = static_cast<std::uint8_t>(bgra >> 24);
    pixels[i] = alpha == 255
                    ? (bgra & 0x00FFFFFF)
                    : OverWhite(static_cast<std::uint8_t>(bgra >> 16), static_cast<std::uint8_t>(bgra >> 8),
                                static_cast<std::uint8_t>(bgra), alpha);
  }
  return true;
}

}  // namespace imageio
