// The loader's platform services on a desktop: files, downloads into memory through
// libcurl, and the codecs.
#include "imageio/picture_codecs.h"
#include "imageio/picture_source.h"
#include "imageio/url_download.h"
#include "platform/gdi.h"

namespace imageio {

bool FetchUrl(const std::string& url, PictureBytes* bytes) {
  if (DownloadToMemory(url, &bytes->data) < 0) return false;
  bytes->count = bytes->data.size();
  return bytes->Allocate(bytes->count);
}

bool ReadPictureFile(const std::string& name, PictureBytes* bytes) { return ReadLocalFile(name, bytes); }

HBITMAP DecodePicture(const std::string& /*name*/, const std::uint8_t* data, std::size_t count) {
  HBITMAP section = nullptr;
  // The decoder writes straight into the DIB section's pixels, which are laid out
  // as it expects (32-bit, top-down, rows of exactly `width` words).
  auto allocate = [&section](int width, int height) -> std::uint32_t* {
    std::uint32_t* pixels = nullptr;
    section = NewPictureSection(width, height, &pixels);
    return pixels;
  };
  if (!DecodePicturePixels(data, count, allocate)) {
    if (section) DeleteObject(section);
    return nullptr;
  }
  return section;
}

}  // namespace imageio
