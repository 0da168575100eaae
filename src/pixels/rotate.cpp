#include "pixels/rotate.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

// The turn moves blocks of 4 x 4 pixels through registers: four 12-byte reads of
// source rows, four 12-byte writes of destination rows. Pixel by pixel, every read
// would be on another source row and so on another memory page, and the page lookups
// would cost more than the copying. The blocks are taken in tiles of 64 x 64 pixels,
// whose source and destination rows stay in the cache while the tile is turned.
constexpr int kBlock = 4;
constexpr int kTile = 64;

// The four pixels of 12 bytes, each in the low three bytes of a word.
struct FourPixels {
  std::uint32_t pixel[kBlock];
};

FourPixels Load(const BYTE* from) {
  std::uint64_t low;
  std::uint32_t high;
  std::memcpy(&low, from, 8);
  std::memcpy(&high, from + 8, 4);
  return FourPixels{{static_cast<std::uint32_t>(low) & 0xFFFFFF,
                     static_cast<std::uint32_t>(low >> 24) & 0xFFFFFF,
                     static_cast<std::uint32_t>(low >> 48) | ((high & 0xFF) << 16), high >> 8}};
}

void Store(BYTE* to, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  const std::uint64_t low = a | (static_cast<std::uint64_t>(b) << 24) | (static_cast<std::uint64_t>(c) << 48);
  const std::uint32_t high = (c >> 16) | (d << 8);
  std::memcpy(to, &low, 8);
  std::memcpy(to + 8, &high, 4);
}

// Where the turn takes pixel (x, y) of a w x h source.
template <bool CounterClockwise>
struct Turn {
  const PixelRect& source;
  const PixelRect& destination;

  BYTE* To(int x, int y) const {
    const int w = source.width();
    const int h = source.height();
    return CounterClockwise ? destination.At(h - 1 - y, x) : destination.At(y, w - 1 - x);
  }
  void Pixel(int x, int y) const { std::memcpy(To(x, y), source.At(x, y), 3); }
  // The block whose lowest, leftmost source pixel is (x, y). Source column x + c
  // becomes a destination row; the four pixels it gets from the block's rows lie in
  // that row from the source row y + 3 on counter-clockwise, from y on clockwise.
  void Block(int x, int y) const {
    FourPixels rows[kBlock];
    for (int r = 0; r < kBlock; ++r) rows[r] = Load(source.At(x, y + r));
    for (int c = 0; c < kBlock; ++c) {
      if constexpr (CounterClockwise) {
        Store(To(x + c, y + 3), rows[3].pixel[c], rows[2].pixel[c], rows[1].pixel[c], rows[0].pixel[c]);
      } else {
        Store(To(x + c, y), rows[0].pixel[c], rows[1].pixel[c], rows[2].pixel[c], rows[3].pixel[c]);
      }
    }
  }
};

template <bool CounterClockwise>
void TurnQuarter(const PixelRect& source, const PixelRect& destination) {
  const Turn<CounterClockwise> turn{source, destination};
  const int w = source.width();
  const int h = source.height();
  // Whole blocks, tile by tile; then the rows and columns left over, pixel by pixel.
  const int blockW = w - w % kBlock;
  const int blockH = h - h % kBlock;
  for (int tileY = 0; tileY < blockH; tileY += kTile) {
    const int endY = std::min(tileY + kTile, blockH);
    for (int tileX = 0; tileX < blockW; tileX += kTile) {
      const int endX = std::min(tileX + kTile, blockW);
      for (int y = tileY; y < endY; y += kBlock) {
        for (int x = tileX; x < endX; x += kBlock) turn.Block(x, y);
      }
    }
  }
  for (int y = 0; y < h; ++y) {
    for (int x = y < blockH ? blockW : 0; x < w; ++x) turn.Pixel(x, y);
  }
}

}  // namespace

void RotateQuarter(const PixelRect& source, int angle, const PixelRect& destination) {
  if (source.empty() || destination.empty() || destination.width() != source.height() ||
      destination.height() != source.width())
    return;
  if (angle == 90) {
    TurnQuarter<true>(source, destination);
  } else {
    TurnQuarter<false>(source, destination);
  }
}
