#include "imageio/bitmap_file_reader.h"

#include <gtest/gtest.h>

#include "bmp_builder.h"

namespace {

using imageio::Dib24;
using imageio::ReadBitmapFile;
using imageio_test::BmpLayout;
using imageio_test::BuildBmp;

// The pixel at (x, y) counted from the top, as 0x00RRGGBB.
std::uint32_t PixelAt(const Dib24& dib, int x, int y) {
  const std::uint8_t* p = dib.rows.data() + static_cast<std::size_t>(dib.height - 1 - y) * dib.stride + x * 3;
  return (p[2] << 16) | (p[1] << 8) | p[0];
}

std::optional<Dib24> Read(const std::vector<std::uint8_t>& file) {
  return ReadBitmapFile(file.data(), file.size());
}

TEST(BitmapFileReader, TwentyFourBitBottomUpWithRowPadding) {
  BmpLayout layout;
  layout.width = 2;
  layout.height = 2;
  // Bottom row first: blue, green; then the top row: red, white. Two padding bytes.
  layout.pixels = {0xFF, 0, 0, 0, 0xFF, 0, 0, 0, /**/ 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0};
  const auto dib = Read(BuildBmp(layout));
  ASSERT_TRUE(dib);
  EXPECT_EQ(dib->stride, 8);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xFF0000u);
  EXPECT_EQ(PixelAt(*dib, 1, 0), 0xFFFFFFu);
  EXPECT_EQ(PixelAt(*dib, 0, 1), 0x0000FFu);
  EXPECT_EQ(PixelAt(*dib, 1, 1), 0x00FF00u);
}

TEST(BitmapFileReader, NegativeHeightMeansTopDownRows) {
  BmpLayout layout;
  layout.height = -2;
  layout.pixels = {0, 0, 0xFF, 0, /* top: red */ 0xFF, 0, 0, 0 /* bottom: blue */};
  const auto dib = Read(BuildBmp(layout));
  ASSERT_TRUE(dib);
  EXPECT_EQ(dib->height, 2);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xFF0000u);
  EXPECT_EQ(PixelAt(*dib, 0, 1), 0x0000FFu);
}

TEST(BitmapFileReader, PalettedDepthsIndexTheirColourTable) {
  // 1 bit: 9 pixels in one row cross a byte boundary; 4 bits: high nibble first.
  BmpLayout one;
  one.width = 9;
  one.bitCount = 1;
  one.palette = {0x102030, 0xA0B0C0};
  one.pixels = {0b10000001, 0b10000000, 0, 0};
  auto dib = Read(BuildBmp(one));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xA0B0C0u);
  EXPECT_EQ(PixelAt(*dib, 1, 0), 0x102030u);
  EXPECT_EQ(PixelAt(*dib, 7, 0), 0xA0B0C0u);
  EXPECT_EQ(PixelAt(*dib, 8, 0), 0xA0B0C0u);

  BmpLayout four;
  four.width = 3;
  four.bitCount = 4;
  four.colorsUsed = 3;
  four.palette = {0x000000, 0x111111, 0x222222};
  four.pixels = {0x21, 0x50, 0, 0};  // index 5 is beyond the 3-entry table: black
  dib = Read(BuildBmp(four));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0x222222u);
  EXPECT_EQ(PixelAt(*dib, 1, 0), 0x111111u);
  EXPECT_EQ(PixelAt(*dib, 2, 0), 0x000000u);

  BmpLayout eight;
  eight.bitCount = 8;
  eight.colorsUsed = 2;
  eight.palette = {0x000000, 0x123456};
  eight.pixels = {1, 0, 0, 0};
  dib = Read(BuildBmp(eight));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0x123456u);
}

TEST(BitmapFileReader, CoreHeaderHasThreeByteColourEntries) {
  BmpLayout layout;
  layout.infoSize = 12;
  layout.bitCount = 8;
  layout.palette.assign(256, 0);
  layout.palette[7] = 0xABCDEF;
  layout.pixels = {7, 0, 0, 0};
  const auto dib = Read(BuildBmp(layout));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xABCDEFu);
}

TEST(BitmapFileReader, SixteenAndThirtyTwoBitDefaultsAndBitfields) {
  BmpLayout rgb555;
  rgb555.bitCount = 16;
  rgb555.pixels = {0x1F, 0x7C, 0, 0};  // 0x7C1F: red 31, green 0, blue 31
  auto dib = Read(BuildBmp(rgb555));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xFF00FFu);

  BmpLayout rgb565;
  rgb565.bitCount = 16;
  rgb565.compression = 3;
  rgb565.masks = {0xF800, 0x07E0, 0x001F};
  rgb565.pixels = {0xE0, 0x07, 0, 0};  // green 63 only
  dib = Read(BuildBmp(rgb565));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0x00FF00u);

  BmpLayout x888;
  x888.bitCount = 32;
  x888.pixels = {0x11, 0x22, 0x33, 0x99};  // the top byte is ignored
  dib = Read(BuildBmp(x888));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0x332211u);

  // Masks inside a 108-byte header, in an unusual channel order.
  BmpLayout v4;
  v4.infoSize = 108;
  v4.bitCount = 32;
  v4.compression = 3;
  v4.masks = {0x000000FF, 0x0000FF00, 0x00FF0000};
  v4.pixels = {0x11, 0x22, 0x33, 0x00};
  dib = Read(BuildBmp(v4));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0x112233u);
}

TEST(BitmapFileReader, MalformedFilesGiveNothing) {
  BmpLayout good;
  good.width = 2;
  good.height = 2;
  good.pixels.assign(16, 0x80);
  const std::vector<std::uint8_t> file = BuildBmp(good);
  ASSERT_TRUE(Read(file));

  // Every truncation, from nothing up to one byte short of the last row.
  for (std::size_t size = 0; size < file.size(); ++size) {
    EXPECT_FALSE(ReadBitmapFile(file.data(), size)) << "truncated to " << size;
  }

  auto variant = [&](auto change) {
    BmpLayout layout = good;
    change(layout);
    return Read(BuildBmp(layout));
  };
  EXPECT_FALSE(variant([](BmpLayout& s) { s.infoSize = 20; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.bitCount = 2; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.compression = 1; }));  // run-length
  EXPECT_FALSE(variant([](BmpLayout& s) { s.compression = 3; }));  // bitfields need 16 or 32 bits
  EXPECT_FALSE(variant([](BmpLayout& s) { s.width = 0; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.width = -2; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.height = 0; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.height = INT32_MIN; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.width = 0x7FFFFFFF; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.height = 100000; }));  // rows beyond the data
  EXPECT_FALSE(variant([](BmpLayout& s) { s.pixelOffsetOverride = 0x7FFFFFFF; }));
  EXPECT_FALSE(variant([](BmpLayout& s) { s.pixelOffsetOverride = 60; }));  // last row cut short
  EXPECT_FALSE(variant([](BmpLayout& s) {                                   // table beyond the data
    s.bitCount = 8;
    s.pixels.clear();
  }));
}

TEST(BitmapFileReader, HugeAnnouncedSizesAreRefusedBeforeAllocating) {
  BmpLayout layout;
  layout.width = 1 << 20;
  layout.height = 1 << 20;
  layout.bitCount = 1;
  layout.palette = {0, 0xFFFFFF};
  layout.pixels.assign(64, 0);
  EXPECT_FALSE(Read(BuildBmp(layout)));
}

TEST(BitmapFileReader, StrideOfTheTwentyFourBitBuffer) {
  EXPECT_EQ(imageio::Dib24Stride(1), 4);
  EXPECT_EQ(imageio::Dib24Stride(4), 12);
  EXPECT_EQ(imageio::Dib24Stride(5), 16);
}

}  // namespace
