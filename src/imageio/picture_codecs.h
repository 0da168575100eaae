// Decoders of the compressed picture formats (JPEG, PNG, GIF) into plain 32-bit
// pixels. They stand apart from the bitmap handles so that tests, fuzz targets and
// benchmarks can run them on their own.
//
// Pixels are 0x00RRGGBB words in top-down rows of exactly `width` words, the layout
// of a 32-bit top-down DIB section. Transparent pixels are laid over white, the
// background the editor shows; only the first frame of an animated GIF is decoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace imageio {

// Called once the picture's size is known; returns storage for width x height
// pixels, or null to refuse the picture.
using PixelAllocator = std::function<std::uint32_t*(int width, int height)>;

enum class PictureFormat { Unknown, Jpeg, Png, Gif, Icon, Metafile };

PictureFormat DetectPictureFormat(const std::uint8_t* data, std::size_t count);

// Each returns true when every pixel of the storage it was given has been written.
bool DecodeJpeg(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate);
bool DecodePng(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate);
bool DecodeGif(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate);

// Picks the decoder by the data's signature. Icons, metafiles and unknown data are
// not decoded (false, the allocator is not called).
bool DecodePicturePixels(const std::uint8_t* data, std::size_t count, const PixelAllocator& allocate);

// A pixel over white with the given opacity (0 transparent, 255 opaque).
inline std::uint32_t OverWhite(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha) {
  auto blend = [alpha](std::uint32_t c) { return (c * alpha + 255u * (255u - alpha) + 127u) / 255u; };
  return (blend(red) << 16) | (blend(green) << 8) | blend(blue);
}

}  // namespace imageio
