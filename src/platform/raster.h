// The software raster under GDI: a block of 32-bit pixels and the row kernels that
// every blit shares (format conversion between monochrome and colour, ternary raster
// operations). Nothing here knows about handles or DCs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/types.h"

namespace platform::raster {

inline constexpr std::uint32_t kBlack = 0x00000000;
inline constexpr std::uint32_t kWhite = 0x00FFFFFF;
inline constexpr std::uint32_t kColorMask = 0x00FFFFFF;
// Larger rasters are refused as if memory had run out (1 GiB of pixels).
inline constexpr std::int64_t kMaxPixels = std::int64_t{1} << 28;

// Pixels are 0x00RRGGBB (bytes blue, green, red, 0 in memory: the 32-bit DIB layout),
// rows top-down. A monochrome raster holds only kBlack (bit 0) and kWhite (bit 1), so
// the bitwise raster operations work on both kinds without special cases.
struct Raster {
  int width = 0;
  int height = 0;
  bool mono = false;
  std::vector<std::uint32_t> pixels;

  std::uint32_t* Row(int y) { return pixels.data() + static_cast<std::size_t>(y) * width; }
  const std::uint32_t* Row(int y) const { return pixels.data() + static_cast<std::size_t>(y) * width; }
};

// Gives `raster` a black width x height pixel block; false (raster untouched) when the
// size is not positive, beyond kMaxPixels, or memory is short.
bool Allocate(Raster& raster, int width, int height, bool mono);

constexpr std::uint32_t PixelOf(COLORREF color) {
  return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}
constexpr COLORREF ColorOf(std::uint32_t pixel) {
  return ((pixel & 0xFF) << 16) | (pixel & 0xFF00) | ((pixel >> 16) & 0xFF);
}
// The nearer of black and white: white when red + green + blue exceeds half of 3 x 255.
constexpr std::uint32_t NearestMono(std::uint32_t pixel) {
  const unsigned sum = (pixel & 0xFF) + ((pixel >> 8) & 0xFF) + ((pixel >> 16) & 0xFF);
  return sum > 382 ? kWhite : kBlack;
}
// A colour as a pixel of a raster of the given kind.
constexpr std::uint32_t PixelFor(COLORREF color, bool mono) {
  return mono ? NearestMono(PixelOf(color)) : PixelOf(color);
}

// How source pixels become destination pixels when the formats differ: a monochrome
// source's 1 bits become `one` and its 0 bits `zero` (the destination DC's background
// and text colours); a colour source onto a monochrome destination gives 1 exactly where
// the pixel equals `key` (the source DC's background colour).
struct Conversion {
  enum class Kind { None, MonoToColor, ColorToMono } kind = Kind::None;
  std::uint32_t one = kWhite;
  std::uint32_t zero = kBlack;
  std::uint32_t key = kWhite;
};
void ConvertRow(const Conversion& conversion, const std::uint32_t* in, std::uint32_t* out, int count);

// Ternary raster operations, by the operation index (bits 16..23 of the ROP code): bit
// (P*4 + S*2 + D) of the index is the result for pattern bit P, source bit S, dest bit D.
constexpr std::uint8_t RopIndex(DWORD rop) { return static_cast<std::uint8_t>((rop >> 16) & 0xFF); }
constexpr bool RopUsesSource(std::uint8_t index) { return ((index >> 2) ^ index) & 0x33; }
constexpr bool RopUsesPattern(std::uint8_t index) { return ((index >> 4) ^ index) & 0x0F; }

// The ternary index of a binary raster operation (SetROP2's R2_BLACK 1 .. R2_WHITE 16)
// with the pen as the pattern: bit (P*2 + D) of mode - 1 is the result for pen bit P and
// destination bit D, whatever the source bit.
constexpr std::uint8_t Rop2Index(int mode) {
  std::uint8_t index = 0;
  for (int term = 0; term < 8; ++term) {
    const int pen = term >> 2;
    const int dest = term & 1;
    if (((mode - 1) >> (pen * 2 + dest)) & 1) index = static_cast<std::uint8_t>(index | (1 << term));
  }
  return index;
}
static_assert(Rop2Index(13) == 0xF0 && Rop2Index(10) == 0xA5 && Rop2Index(6) == 0x55 &&
              Rop2Index(11) == 0xAA);

// dst[i] = rop(pattern, src[i], dst[i]) for `count` pixels; `src` may be null when the
// operation does not read it. Results are masked to 24 bits.
void ApplyRop(std::uint8_t index, const std::uint32_t* src, std::uint32_t pattern, std::uint32_t* dst,
              int count);

}  // namespace platform::raster
