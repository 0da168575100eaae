#include <cstdint>
#include <vector>

#include "platform/gdi_test_support.h"

using gdi_test::kBlack;
using gdi_test::kWhite;
using gdi_test::MemSurface;
using Row = std::vector<COLORREF>;

namespace {

BITMAPINFOHEADER Header(int width, int height, int bitCount, DWORD compression = BI_RGB) {
  return BITMAPINFOHEADER{40, width, height, 1, static_cast<WORD>(bitCount), compression, 0, 0, 0, 0, 0};
}

// The product transfers whole 24-bit pictures (pixel buffers, bitmap files); their rows
// are checked there (surface_ops_test, the bitmap file tests). Here the edges: lines
// picked by start and count, lines past the end, and arguments that transfer nothing.
TEST(GdiDib, StartAndLinesSelectScanLinesAndBadArgumentsTransferNothing) {
  MemSurface s(1, 4);
  for (int y = 0; y < 4; ++y) SetPixel(s.dc(), 0, y, RGB(y, 0, 0));
  BITMAPINFO info{};
  info.bmiHeader = Header(1, 4, 24);
  std::vector<BYTE> bits(8, 0xAA);
  // Bottom-up scan lines 1 and 2 are bitmap rows 2 and 1; the padding after each row
  // is zeroed, whatever the memory held.
  ASSERT_EQ(GetDIBits(s.dc(), s.bitmap(), 1, 2, bits.data(), &info, DIB_RGB_COLORS), 2);
  EXPECT_EQ(bits, (std::vector<BYTE>{0, 0, 2, 0, 0, 0, 1, 0}));
  // Lines beyond the DIB's height are not transferred.
  EXPECT_EQ(GetDIBits(s.dc(), s.bitmap(), 3, 5, bits.data(), &info, DIB_RGB_COLORS), 1);
  EXPECT_EQ(bits[2], 0);
  const BYTE red[4] = {0, 0, 200, 0};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 3, 1, red, &info, DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 1), Row{RGB(200, 0, 0)});

  EXPECT_EQ(GetDIBits(nullptr, s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
  EXPECT_EQ(GetDIBits(s.dc(), nullptr, 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
  EXPECT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 2, nullptr, &info, DIB_RGB_COLORS), 0);
  for (const BITMAPINFOHEADER& bad : {Header(0, 2, 24), Header(2, 2, 24, BI_RLE8), Header(2, 2, 12)}) {
    info.bmiHeader = bad;
    EXPECT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
  }
  EXPECT_EQ(s.Row(0, 1), Row{RGB(200, 0, 0)});
}

// Rows written into a bitmap whose rows it shares with another (a whole copy), covering
// some of its bands whole and others in part: each row gets its own line, the rows
// around keep theirs and the other bitmap stays as it was.
TEST(GdiDib, SetDIBitsIntoSharedRowsWritesOnlyItsLines) {
  constexpr int kRows = 40;
  MemSurface original(1, kRows), copy(1, kRows);
  for (int y = 0; y < kRows; ++y) SetPixel(original.dc(), 0, y, RGB(y, 0, 0));
  ASSERT_TRUE(BitBlt(copy.dc(), 0, 0, 1, kRows, original.dc(), 0, 0, SRCCOPY));
  BITMAPINFO info{};
  info.bmiHeader = Header(1, kRows, 32);
  std::vector<std::uint32_t> lines(30);
  for (std::uint32_t k = 0; k < lines.size(); ++k) lines[k] = 0x00FF00 | k;
  // Bottom-up scan lines 5 .. 34 are bitmap rows 34 .. 5.
  ASSERT_EQ(SetDIBits(copy.dc(), copy.bitmap(), 5, 30, lines.data(), &info, DIB_RGB_COLORS), 30);
  for (int y = 0; y < kRows; ++y) {
    const bool written = y >= 5 && y < 35;
    EXPECT_EQ(copy.Row(y, 1), Row{written ? RGB(0, 255, 34 - y) : RGB(y, 0, 0)}) << "row " << y;
    EXPECT_EQ(original.Row(y, 1), Row{RGB(y, 0, 0)}) << "row " << y;
  }
}

}  // namespace

TEST(GdiDib, MappedRowsReadOneBitmapAndWriteAnother) {
  MemSurface source(40, 40);
  MemSurface target(40, 40);
  source.SetRow(10, {RGB(1, 2, 3), RGB(4, 5, 6)});
  // The target shares the source's bands after a whole copy; writing it must not
  // reach the source. Each area is written as its pixels read from the source, with
  // its own mark.
  BitBlt(target.dc(), 0, 0, 40, 40, source.dc(), 0, 0, SRCCOPY);
  const struct {
    RECT area;
    std::uint32_t mark;
  } areas[] = {
      {RECT{0, 8, 40, 37}, 0x00FFFFFF}, {RECT{1, 10, 3, 12}, 0x00000080}, {RECT{-5, 38, 99, 99}, 0x00010101}};
  for (const auto& [area, mark] : areas) {
    platform::BitmapRows rows;
    ASSERT_TRUE(platform::MapBitmapRows(source.bitmap(), target.bitmap(), area, &rows));
    const int top = std::max(0, static_cast<int>(area.top));
    const int left = std::max(0, static_cast<int>(area.left));
    ASSERT_EQ(rows.width, std::min(40, static_cast<int>(area.right)) - left);
    ASSERT_EQ(rows.target.size(),
              static_cast<std::size_t>(std::min(40, static_cast<int>(area.bottom)) - top));
    ASSERT_EQ(rows.source.size(), rows.target.size());
    for (std::size_t y = 0; y < rows.target.size(); ++y) {
      for (int x = 0; x < rows.width; ++x) rows.target[y][x] = rows.source[y][x] ^ mark;
    }
  }
  EXPECT_EQ(source.Row(10, 3), (Row{RGB(1, 2, 3), RGB(4, 5, 6), kBlack}));
  // The narrow area replaced two pixels of the first area's row and left the rest.
  EXPECT_EQ(target.Row(10, 4), (Row{RGB(254, 253, 252), RGB(4, 5, 6 ^ 0x80), RGB(0, 0, 0x80), kWhite}));
  EXPECT_EQ(target.Row(7, 1), Row{kBlack});
  EXPECT_EQ(target.Row(39, 1), Row{RGB(1, 1, 1)});

  // In place, the rows are one set; nothing but two colour bitmaps of one size maps.
  platform::BitmapRows rows;
  ASSERT_TRUE(platform::MapBitmapRows(target.bitmap(), target.bitmap(), RECT{0, 0, 40, 40}, &rows));
  EXPECT_EQ(rows.source.front(), rows.target.front());
  MemSurface mono(40, 40, true);
  MemSurface smaller(40, 39);
  EXPECT_FALSE(platform::MapBitmapRows(mono.bitmap(), target.bitmap(), RECT{0, 0, 40, 40}, &rows));
  EXPECT_FALSE(platform::MapBitmapRows(source.bitmap(), smaller.bitmap(), RECT{0, 0, 40, 40}, &rows));
}
