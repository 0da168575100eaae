// Bounds on the pictures the loader accepts, so that a small hostile file cannot
// make it allocate without limit: no picture may have more pixels than this.
#pragma once

#include <cstdint>

namespace imageio {

inline constexpr std::int64_t kMaxPicturePixels = std::int64_t{1} << 26;  // 64 Mpx, 256 MiB at 32 bits

// The largest local file the loader reads: the largest bitmap file that a picture
// within the pixel limit needs. Its rows take at most 4 bytes a pixel (32 bits a
// pixel; narrower depths pad each row to 4 bytes, so a 1-pixel-wide picture of any
// depth takes the same), after a 14-byte file header, the longest info header (124
// bytes, bit-field masks inside) and a full 256-colour table. JPEG, PNG and GIF
// files of such a picture are smaller in practice (only an uncompressed PNG of 16
// bits a channel could be larger, and is refused). A larger file is refused before
// a byte of it is read, so a huge file cannot exhaust memory or time.
inline constexpr std::int64_t kMaxPictureFileBytes = 4 * kMaxPicturePixels + 14 + 124 + 256 * 4;

inline bool PictureSizeAcceptable(std::int64_t width, std::int64_t height) {
  return width > 0 && height > 0 && width <= kMaxPicturePixels && height <= kMaxPicturePixels &&
         width * height <= kMaxPicturePixels;
}

}  // namespace imageio
