// Telling picture formats apart by their signatures; shared by the codecs and by the
// web build, which decodes with the browser but still refuses icons and metafiles.
#include <cstring>

#include "imageio/picture_codecs.h"

namespace imageio {
namespace {

bool StartsWith(const std::uint8_t* data, std::size_t count, const void* prefix, std::size_t length) {
  return count >= length && std::memcmp(data, prefix, length) == 0;
}

}  // namespace

PictureFormat DetectPictureFormat(const std::uint8_t* data, std::size_t count) {
  static constexpr std::uint8_t kJpeg[] = {0xFF, 0xD8, 0xFF};
  static constexpr std::uint8_t kPng[] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
  static constexpr std::uint8_t kIcon[] = {0x00, 0x00, 0x01, 0x00};
  static constexpr std::uint8_t kCursor[] = {0x00, 0x00, 0x02, 0x00};
  static constexpr std::uint8_t kPlaceableMetafile[] = {0xD7, 0xCD, 0xC6, 0x9A};
  static constexpr std::uint8_t kEnhancedMetafile[] = {0x01, 0x00, 0x00, 0x00};
  if (StartsWith(data, count, kJpeg, sizeof kJpeg)) return PictureFormat::Jpeg;
  if (StartsWith(data, count, kPng, sizeof kPng)) return PictureFormat::Png;
  if (StartsWith(data, count, "GIF87a", 6) || StartsWith(data, count, "GIF89a", 6)) return PictureFormat::Gif;
  if (StartsWith(data, count, kIcon, sizeof kIcon) || StartsWith(data, count, kCursor, sizeof kCursor)) {
    return PictureFormat::Icon;
  }
  if (StartsWith(data, count, kPlaceableMetafile, sizeof kPlaceableMetafile) ||
      (StartsWith(data, count, kEnhancedMetafile, sizeof kEnhancedMetafile) && count >= 44 &&
       std::memcmp(data + 40, " EMF", 4) == 0)) {
    return PictureFormat::Metafile;
  }
  return PictureFormat::Unknown;
}

}  // namespace imageio
