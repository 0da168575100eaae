// Mirroring a rectangle inside a larger buffer: an odd width keeps its middle column,
// and nothing outside the rectangle moves.
#include "pixels/mirror.h"

#include <gtest/gtest.h>

#include "pixels/pixel_buffer.h"

namespace {

TEST(MirrorTest, ReversesEachRowOfTheRectangleOnly) {
  constexpr int kWidth = 9, kHeight = 4;
  PixelBuffer buffer(kWidth, kHeight);
  ASSERT_TRUE(buffer);
  ForEachPixel(buffer.Whole(), [](BYTE* pixel, int x, int y) {
    pixel[0] = static_cast<BYTE>(x);
    pixel[1] = static_cast<BYTE>(y);
    pixel[2] = static_cast<BYTE>(x * 16 + y);
  });
  // Columns 2..6 (five, odd) of rows 1..2.
  MirrorRows(buffer.Area(RECT{2, 1, 7, 3}));
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const BYTE* pixel = buffer.Whole().At(x, y);
      const bool inside = x >= 2 && x < 7 && y >= 1 && y < 3;
      const int from = inside ? 2 + 6 - x : x;
      EXPECT_EQ(pixel[0], from) << x << "," << y;
      EXPECT_EQ(pixel[1], y);
      EXPECT_EQ(pixel[2], from * 16 + y);
    }
  }
}

}  // namespace
