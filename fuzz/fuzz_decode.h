// Shared by the picture fuzz targets: decodes into throw-away storage. Pictures
// above a megapixel are refused the way a failed allocation is, so that each run
// stays fast; the decoders' own size limit is tested by the unit tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "imageio/picture_codecs.h"

inline constexpr std::int64_t kFuzzMaxPixels = 1 << 20;

template <typename Decoder>
void DecodeIntoScratch(const std::uint8_t* data, std::size_t size, Decoder decode) {
  std::unique_ptr<std::uint32_t[]> pixels;
  decode(data, size, [&pixels](int width, int height) -> std::uint32_t* {
    if (static_cast<std::int64_t>(width) * height > kFuzzMaxPixels) return nullptr;
    pixels.reset(new std::uint32_t[static_cast<std::size_t>(width) * static_cast<std::size_t>(height)]);
    return pixels.get();
  });
}
