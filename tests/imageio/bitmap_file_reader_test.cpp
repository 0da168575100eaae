#include "imageio/bitmap_file_reader.h"

#include <gtest/gtest.h>

#include "bmp_builder.h"

namespace {

using imageio::ReadBitmapFile;
using imageio_test::BmpLayout;
using imageio_test::BuildBmp;

std::optional<imageio::Dib24> Read(const std::vector<std::uint8_t>& file) {
  return ReadBitmapFile(file.data(), file.size());
}

// Every pixel as 0x00RRGGBB, top row first.
std::vector<std::uint32_t> Pixels(const imageio::Dib24& dib) {
  std::vector<std::uint32_t> pixels;
  for (int y = dib.height - 1; y >= 0; --y) {
    for (int x = 0; x < dib.width; ++x) {
      const std::uint8_t* p = dib.rows.data() + static_cast<std::size_t>(y) * dib.stride + x * 3;
      pixels.push_back((p[2] << 16) | (p[1] << 8) | p[0]);
    }
  }
  return pixels;
}

TEST(BitmapFileReader, EachDepthRowOrderAndHeaderKindGivesItsColours) {
  std::vector<std::uint32_t> fullTable(256, 0);
  fullTable[7] = 0xABCDEF;
  struct Case {
    const char* what;
    BmpLayout layout;
    std::vector<std::uint32_t> pixels;
  };
  const Case cases[] = {
      {"24 bits, bottom row first, rows padded",
       {.width = 2,
        .height = 2,
        .pixels = {0xFF, 0, 0, 0, 0xFF, 0, 0, 0, /**/ 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}},
       {0xFF0000, 0xFFFFFF, 0x0000FF, 0x00FF00}},
      {"negative height: top row first",
       {.height = -2, .pixels = {0, 0, 0xFF, 0, 0xFF, 0, 0, 0}},
       {0xFF0000, 0xFF}},
      {"1 bit, a row crossing a byte",
       {.width = 9, .bitCount = 1, .palette = {0x102030, 0xA0B0C0}, .pixels = {0b10000001, 0b10000000, 0, 0}},
       {0xA0B0C0, 0x102030, 0x102030, 0x102030, 0x102030, 0x102030, 0x102030, 0xA0B0C0, 0xA0B0C0}},
      {"4 bits, high nibble first; an index past the table is black",
       {.width = 3,
        .bitCount = 4,
        .colorsUsed = 3,
        .palette = {0, 0x111111, 0x222222},
        .pixels = {0x21, 0x50, 0, 0}},
       {0x222222, 0x111111, 0}},
      {"core header, 3-byte entries",
       {.infoSize = 12, .bitCount = 8, .palette = fullTable, .pixels = {7, 0, 0, 0}},
       {0xABCDEF}},
      {"16 bits default 5-5-5", {.bitCount = 16, .pixels = {0x1F, 0x7C, 0, 0}}, {0xFF00FF}},
      // Narrow channels widen as SetDIBits widens them (checked against Windows GDI):
      // blue 16 of 31 is 132, not 16 * 255 / 31.
      {"16 bits, blue 16 of 31", {.bitCount = 16, .pixels = {0x10, 0x00, 0, 0}}, {0x000084}},
      {"16 bits 5-6-5 bitfields",
       {.bitCount = 16, .compression = 3, .masks = {0xF800, 0x07E0, 0x001F}, .pixels = {0xE0, 0x07, 0, 0}},
       {0x00FF00}},
      {"32 bits, top byte ignored", {.bitCount = 32, .pixels = {0x11, 0x22, 0x33, 0x99}}, {0x332211}},
      {"masks inside a 108-byte header, unusual order",
       {.infoSize = 108,
        .bitCount = 32,
        .compression = 3,
        .masks = {0xFF, 0xFF00, 0xFF0000},
        .pixels = {0x11, 0x22, 0x33, 0}},
       {0x112233}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const auto dib = Read(BuildBmp(c.layout));
    ASSERT_TRUE(dib);
    EXPECT_EQ(Pixels(*dib), c.pixels);
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
  EXPECT_FALSE(variant([](BmpLayout& s) { s.compression = 1; }));  // run-length needs 8 bits
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
  // A huge announced size is refused before anything is allocated for it.
  EXPECT_FALSE(variant([](BmpLayout& s) {
    s.width = s.height = 1 << 20;
    s.bitCount = 1;
    s.palette = {0, 0xFFFFFF};
    s.pixels.assign(64, 0);
  }));
}

}  // namespace
