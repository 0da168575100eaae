#include "imageio/picture_codecs.h"

namespace imageio {

bool DecodePicturePixels(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate) {
  switch (DetectPictureFormat(data, count)) {
    case PictureFormat::Jpeg:
      return DecodeJpeg(data, count, allocate);
    case PictureFormat::Png:
      return DecodePng(data, count, allocate);
    case PictureFormat::Gif:
      return DecodeGif(data, count, allocate);
    case PictureFormat::Icon:
    case PictureFormat::Metafile:
    case PictureFormat::Unknown:
      break;
  }
  return false;
}

}  // namespace imageio
