// The mosaic on a hand-made buffer: cell sizes at the edges, cells anchored at the
// top of the picture, truncated means.
#include "pixels/mosaic.h"

#include <gtest/gtest.h>

#include "pixels/pixel_buffer.h"

namespace {

// A 20 x 10 rectangle gives cells of 8, 8 and 4 columns, and of 8 rows at the top and
// 2 at the bottom. Byte 0 varies with the column, byte 1 with the picture row (counted
// from the top), byte 2 with the column modulo 3, so that each cell's mean can be
// worked out by hand and a cell boundary in the wrong place changes it.
TEST(MosaicTest, CellsOfEightAnchoredAtTheTopLeftAndCutAtTheEdges) {
  constexpr int kWidth = 20, kHeight = 10;
  PixelBuffer buffer(kWidth, kHeight);
  ASSERT_TRUE(buffer);
  const PixelRect all = buffer.Whole();
  const auto rowFromTop = [](int bufferRow) { return kHeight - 1 - bufferRow; };
  ForEachPixel(all, [&](BYTE* pixel, int x, int y) {
    pixel[0] = static_cast<BYTE>(x * 10);
    pixel[1] = static_cast<BYTE>(rowFromTop(y) * 20);
    pixel[2] = static_cast<BYTE>(x % 3);
  });
  PixelateCells(all, 8);
  // Columns 0-7: (0 + ... + 70) / 8 = 35; 8-15: 115; 16-19: (160 + ... + 190) / 4 = 175.
  // Rows 0-7: (0 + ... + 140) / 8 = 70; rows 8-9: (160 + 180) / 2 = 170.
  // x % 3 over columns 0-7 sums to 7, so 7 / 8 truncates to 0; 8-15: 2,0,1,2,0,1,2,0 -> 1;
  // 16-19: 1,2,0,1 -> 1.
  const auto column = [](int x) { return x < 8 ? 0 : x < 16 ? 1 : 2; };
  const BYTE byte0[] = {35, 115, 175}, byte2[] = {0, 1, 1};
  ForEachPixel(all, [&](const BYTE* pixel, int x, int y) {
    EXPECT_EQ(pixel[0], byte0[column(x)]) << x << "," << rowFromTop(y);
    EXPECT_EQ(pixel[1], rowFromTop(y) < 8 ? 70 : 170) << x << "," << rowFromTop(y);
    EXPECT_EQ(pixel[2], byte2[column(x)]) << x << "," << rowFromTop(y);
  });
}

}  // namespace
