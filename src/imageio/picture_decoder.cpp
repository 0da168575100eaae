#include "imageio/picture_decoder.h"

#include "imageio/picture_codecs.h"
#include "platform/gdi.h"

namespace imageio {

HBITMAP DecodePicture(const std::uint8_t* data, std::size_t count) {
  HBITMAP section = nullptr;
  // The decoder writes straight into the DIB section's pixels, which are laid out
  // as it expects (32-bit, top-down, rows of exactly `width` words).
  auto allocate = [&section](int width, int height) -> std::uint32_t* {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    section = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (section && !bits) {
      DeleteObject(section);
      section = nullptr;
    }
    return static_cast<std::uint32_t*>(bits);
  };
  if (!DecodePicturePixels(data, count, allocate)) {
    if (section) DeleteObject(section);
    return nullptr;
  }
  return section;
}

}  // namespace imageio
