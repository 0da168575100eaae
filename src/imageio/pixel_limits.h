// Bounds on the pictures the loader accepts, so that a small hostile file cannot
// make it allocate without limit: no picture may have more pixels than this.
#pragma once

#include <cstdint>

namespace imageio {

inline constexpr std::int64_t kMaxPicturePixels = std::int64_t{1} << 26;  // 64 Mpx, 256 MiB at 32 bits

inline bool PictureSizeAcceptable(std::int64_t width, std::int64_t height) {
  return width > 0 && height > 0 && width <= kMaxPicturePixels && height <= kMaxPicturePixels &&
         width * height <= kMaxPicturePixels;
}

}  // namespace imageio
