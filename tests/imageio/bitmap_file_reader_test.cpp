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
  // Bottom row first: blue, green; then the top row: red, white. Two padding bytes.
  const auto dib =
      Read(BuildBmp({.width = 2,
                     .height = 2,
                     .pixels = {0xFF, 0, 0, 0, 0xFF, 0, 0, 0, /**/ 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}}));
  ASSERT_TRUE(dib);
  EXPECT_EQ(dib->stride, 8);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xFF0000u);
  EXPECT_EQ(PixelAt(*dib, 1, 0), 0xFFFFFFu);
  EXPECT_EQ(PixelAt(*dib, 0, 1), 0x0000FFu);
  EXPECT_EQ(PixelAt(*dib, 1, 1), 0x00FF00u);
}

TEST(BitmapFileReader, NegativeHeightMeansTopDownRows) {
  const auto dib = Read(
      BuildBmp({.height = -2, .pixels = {0, 0, 0xFF, 0, /* top: red */ 0xFF, 0, 0, 0 /* bottom: blue */}}));
  ASSERT_TRUE(dib);
  EXPECT_EQ(dib->height, 2);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xFF0000u);
  EXPECT_EQ(PixelAt(*dib, 0, 1), 0x0000FFu);
}

TEST(BitmapFileReader, PalettedDepthsIndexTheirColourTable) {
  // 1 bit: 9 pixels in one row cross a byte boundary.
  auto dib = Read(BuildBmp({.width = 9,
                            .bitCount = 1,
                            .palette = {0x102030, 0xA0B0C0},
                            .pixels = {0b10000001, 0b10000000, 0, 0}}));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0xA0B0C0u);
  EXPECT_EQ(PixelAt(*dib, 1, 0), 0x102030u);
  EXPECT_EQ(PixelAt(*dib, 7, 0), 0xA0B0C0u);
  EXPECT_EQ(PixelAt(*dib, 8, 0), 0xA0B0C0u);
  // 4 bits: high nibble first; index 5 is beyond the 3-entry table: black.
  dib = Read(BuildBmp({.width = 3,
                       .bitCount = 4,
                       .colorsUsed = 3,
                       .palette = {0x000000, 0x111111, 0x222222},
                       .pixels = {0x21, 0x50, 0, 0}}));
  ASSERT_TRUE(dib);
  EXPECT_EQ(PixelAt(*dib, 0, 0), 0x222222u);
  EXPECT_EQ(PixelAt(*dib, 1, 0), 0x111111u);
  EXPECT_EQ(PixelAt(*dib, 2, 0), 0x000000u);
}

TEST(BitmapFileReader, EachDepthAndHeaderKindGivesItsColour) {
  std::vector<std::uint32_t> fullTable(256, 0);
  fullTable[7] = 0xABCDEF;
  struct Case {
    const char* what;
    BmpLayout layout;
    std::uint32_t color;
  };
  const Case cases[] = {
      {"8 bits, 2-entry table",
       {.bitCount = 8, .colorsUsed = 2, .palette = {0, 0x123456}, .pixels = {1, 0, 0, 0}},
       0x123456},
      {"core header, 3-byte entries",
       {.infoSize = 12, .bitCount = 8, .palette = fullTable, .pixels = {7, 0, 0, 0}},
       0xABCDEF},
      {"16 bits default 5-5-5", {.bitCount = 16, .pixels = {0x1F, 0x7C, 0, 0}}, 0xFF00FF},
      // Narrow channels widen as SetDIBits widens them (checked against Windows GDI):
      // blue 16 of 31 is 132, not 16 * 255 / 31.
      {"16 bits, blue 16 of 31", {.bitCount = 16, .pixels = {0x10, 0x00, 0, 0}}, 0x000084},
      {"16 bits 5-6-5 bitfields",
       {.bitCount = 16, .compression = 3, .masks = {0xF800, 0x07E0, 0x001F}, .pixels = {0xE0, 0x07, 0, 0}},
       0x00FF00},
      {"32 bits, top byte ignored", {.bitCount = 32, .pixels = {0x11, 0x22, 0x33, 0x99}}, 0x332211},
      {"masks inside a 108-byte header, unusual order",
       {.infoSize = 108,
        .bitCount = 32,
        .compression = 3,
        .masks = {0xFF, 0xFF00, 0xFF0000},
        .pixels = {0x11, 0x22, 0x33, 0}},
       0x112233},
  };
  for (const Case& c : cases) {
    const auto dib = Read(BuildBmp(c.layout));
    ASSERT_TRUE(dib) << c.what;
    EXPECT_EQ(PixelAt(*dib, 0, 0), c.color) << c.what;
  }
}

TEST(BitmapFileReader, MalformedFilesGiveNothing) {
  const BmpLayout good{.width = 2, .height = 2, .pixels = std::vector<std::uint8_t>(16, 0x80)};
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
  EXPECT_FALSE(Read(BuildBmp({.width = 1 << 20,
                              .height = 1 << 20,
                              .bitCount = 1,
                              .palette = {0, 0xFFFFFF},
                              .pixels = std::vector<std::uint8_t>(64, 0)})));
}

}  // namespace
