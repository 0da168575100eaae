#include "pixels/rotate.h"

#include <algorithm>
#include <cstring>

namespace {

// The source is read in square tiles: a tile's source rows and its destination rows
// both stay in the cache while it is turned, where a whole column of a large picture
// would evict each line before its next pixel is read.
constexpr int kTile = 64;

}  // namespace

void RotateQuarter(const PixelRect& source, int angle, const PixelRect& destination) {
  const int w = source.width();
  const int h = source.height();
  if (source.empty() || destination.empty() || destination.width() != h || destination.height() != w) return;
  const bool counterClockwise = angle == 90;
  // A step of one source row moves the destination pixel by a column, to the left for
  // a counter-clockwise turn.
  const std::ptrdiff_t columnStep = counterClockwise ? -3 : 3;
  for (int tileY = 0; tileY < h; tileY += kTile) {
    const int endY = std::min(tileY + kTile, h);
    for (int tileX = 0; tileX < w; tileX += kTile) {
      const int endX = std::min(tileX + kTile, w);
      for (int x = tileX; x < endX; ++x) {
        const BYTE* from = source.At(x, tileY);
        BYTE* to = counterClockwise ? destination.At(h - 1 - tileY, x) : destination.At(tileY, w - 1 - x);
        for (int y = tileY; y < endY; ++y, from += source.stride, to += columnStep) std::memcpy(to, from, 3);
      }
    }
  }
}
