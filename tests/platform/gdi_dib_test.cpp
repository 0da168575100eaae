#include <cstring>
#include <vector>

#include "platform/gdi_test_support.h"

using gdi_test::kBlack;
using gdi_test::kWhite;
using gdi_test::MemSurface;
using Row = std::vector<COLORREF>;

namespace {

BITMAPINFOHEADER Header(int width, int height, int bitCount, DWORD compression = BI_RGB,
                        DWORD colorsUsed = 0) {
  return BITMAPINFOHEADER{40, width, height,     1, static_cast<WORD>(bitCount), compression, 0,
                          0,  0,     colorsUsed, 0};
}

// A header followed by a colour table or channel masks, as image files store them.
struct InfoWithTable {
  BITMAPINFOHEADER header;
  DWORD table[16];
  const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

TEST(GdiDib, HeaderQueryGivesFourByteAlignedStrides) {
  for (const auto& [width, stride] : {std::pair{1, 4}, std::pair{4, 12}, std::pair{5, 16}}) {
    MemSurface s(width, 3);
    BITMAPINFO info{};
    info.bmiHeader = Header(width, 3, 24);
    ASSERT_EQ(GetDIBits(s.dc(), s.bitmap(), 0, 3, nullptr, &info, DIB_RGB_COLORS), 3);
    EXPECT_EQ(info.bmiHeader.biSizeImage, static_cast<DWORD>(stride * 3)) << width;
  }
  MemSurface s(7, 2);
  BITMAPINFO info{};
  info.bmiHeader.biSize = 40;
  ASSERT_NE(GetDIBits(s.dc(), s.bitmap(), 0, 2, nullptr, &info, DIB_RGB_COLORS), 0);
  EXPECT_EQ(info.bmiHeader.biWidth, 7);
  EXPECT_EQ(info.bmiHeader.biHeight, 2);
  EXPECT_EQ(info.bmiHeader.biBitCount, 32);
  EXPECT_EQ(info.bmiHeader.biSizeImage, 7u * 4 * 2);
}

TEST(GdiDib, BottomUp24BitRowsWithPadding) {
  MemSurface s(2, 2);
  s.SetRow(0, {RGB(1, 2, 3), RGB(4, 5, 6)});
  s.SetRow(1, {RGB(7, 8, 9), RGB(10, 11, 12)});
  BITMAPINFO info{};
  info.bmiHeader = Header(2, 2, 24);
  std::vector<BYTE> bits(16, 0xEE);
  ASSERT_EQ(GetDIBits(s.dc(), s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 2);
  // Buffer row 0 is the bottom row; bytes blue, green, red; padding left alone.
  EXPECT_EQ(bits, (std::vector<BYTE>{9, 8, 7, 12, 11, 10, 0xEE, 0xEE, 3, 2, 1, 6, 5, 4, 0xEE, 0xEE}));
  bits[0] = 0x55;  // bottom-left blue
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 2);
  EXPECT_EQ(GetPixel(s.dc(), 0, 1), RGB(7, 8, 0x55));
  EXPECT_EQ(GetPixel(s.dc(), 1, 0), RGB(4, 5, 6));
}

TEST(GdiDib, TopDownAnd32BitRoundTripsAreLossless) {
  MemSurface s(3, 2);
  const Row top{RGB(255, 0, 1), RGB(2, 254, 3), RGB(128, 127, 129)};
  const Row bottom{RGB(0, 0, 0), RGB(255, 255, 255), RGB(19, 67, 11)};
  s.SetRow(0, top);
  s.SetRow(1, bottom);
  for (int bitCount : {24, 32}) {
    BITMAPINFO info{};
    info.bmiHeader = Header(3, -2, bitCount);
    std::vector<BYTE> bits(static_cast<std::size_t>((3 * bitCount + 31) / 32 * 4 * 2));
    ASSERT_EQ(GetDIBits(s.dc(), s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 2);
    EXPECT_EQ(bits[0], 1);  // top-down: the first row is the top row (pixel 0 blue)
    MemSurface copy(3, 2);
    ASSERT_EQ(SetDIBits(copy.dc(), copy.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 2);
    EXPECT_EQ(copy.Row(0, 3), top) << bitCount;
    EXPECT_EQ(copy.Row(1, 3), bottom) << bitCount;
  }
}

TEST(GdiDib, StartAndLinesSelectScanLines) {
  MemSurface s(1, 4);
  for (int y = 0; y < 4; ++y) SetPixel(s.dc(), 0, y, RGB(y, 0, 0));
  BITMAPINFO info{};
  info.bmiHeader = Header(1, 4, 24);
  std::vector<BYTE> bits(8, 0);
  // Bottom-up scan lines 1 and 2 are bitmap rows 2 and 1.
  ASSERT_EQ(GetDIBits(s.dc(), s.bitmap(), 1, 2, bits.data(), &info, DIB_RGB_COLORS), 2);
  EXPECT_EQ(bits[2], 2);
  EXPECT_EQ(bits[6], 1);
  // Lines beyond the DIB's height are not transferred.
  EXPECT_EQ(GetDIBits(s.dc(), s.bitmap(), 3, 5, bits.data(), &info, DIB_RGB_COLORS), 1);
  EXPECT_EQ(bits[2], 0);
  const BYTE red[4] = {0, 0, 200, 0};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 3, 1, red, &info, DIB_RGB_COLORS), 1);
  EXPECT_EQ(GetPixel(s.dc(), 0, 0), RGB(200, 0, 0));
  EXPECT_EQ(GetPixel(s.dc(), 0, 1), RGB(1, 0, 0));
}

TEST(GdiDib, BadArgumentsTransferNothing) {
  MemSurface s(2, 2);
  BITMAPINFO info{};
  info.bmiHeader = Header(2, 2, 24);
  std::vector<BYTE> bits(16);
  EXPECT_EQ(GetDIBits(nullptr, s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
  EXPECT_EQ(GetDIBits(s.dc(), nullptr, 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
  EXPECT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 2, nullptr, &info, DIB_RGB_COLORS), 0);
  info.bmiHeader = Header(0, 2, 24);
  EXPECT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
  info.bmiHeader = Header(2, 2, 24, BI_RLE8);
  EXPECT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
  info.bmiHeader = Header(2, 2, 12);
  EXPECT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 2, bits.data(), &info, DIB_RGB_COLORS), 0);
}

TEST(GdiDib, PalettedRowsReadTheirColourTable) {
  MemSurface s(5, 1);
  InfoWithTable one{Header(5, 1, 1), {0x00112233, 0x00AABBCC}};
  const BYTE oneBits[4] = {0xA8, 0, 0, 0};  // 1 0 1 0 1
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 1, oneBits, one.info(), DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 5), (Row{0xCCBBAA, 0x332211, 0xCCBBAA, 0x332211, 0xCCBBAA}));

  // A short table (biClrUsed 3): indexes past it read black.
  InfoWithTable four{Header(5, 1, 4, BI_RGB, 3), {0x00FF0000, 0x0000FF00, 0x000000FF}};
  const BYTE fourBits[4] = {0x01, 0x2F, 0x10, 0};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 1, fourBits, four.info(), DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 5), (Row{RGB(255, 0, 0), RGB(0, 255, 0), RGB(0, 0, 255), kBlack, RGB(0, 255, 0)}));

  InfoWithTable eight{Header(5, 1, 8, BI_RGB, 2), {0x00010203, 0x00040506}};
  const BYTE eightBits[8] = {1, 0, 1, 1, 200, 0, 0, 0};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 1, eightBits, eight.info(), DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 5), (Row{0x060504, 0x030201, 0x060504, 0x060504, kBlack}));
}

TEST(GdiDib, SixteenAndThirtyTwoBitMasksWidenToEightBits) {
  MemSurface s(3, 1);
  InfoWithTable rgb555{Header(3, 1, 16), {}};
  // 0x7FFF white, 0x7C00 pure red, 0x0010 blue 16 of 31, which GDI widens to 132 by
  // repeating the top bits (the bitmap file reader does the same)
  const BYTE bits555[8] = {0xFF, 0x7F, 0x00, 0x7C, 0x10, 0x00, 0, 0};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 1, bits555, rgb555.info(), DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 3), (Row{kWhite, RGB(255, 0, 0), RGB(0, 0, 0x84)}));

  InfoWithTable rgb565{Header(3, 1, 16, BI_BITFIELDS), {0xF800, 0x07E0, 0x001F}};
  // green 0x07E0 full, 0x0020 green 1 of 63, 0xF81F magenta
  const BYTE bits565[8] = {0xE0, 0x07, 0x20, 0x00, 0x1F, 0xF8, 0, 0};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 1, bits565, rgb565.info(), DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 3), (Row{RGB(0, 255, 0), RGB(0, 4, 0), RGB(255, 0, 255)}));

  // 32-bit with the channels in unusual places: red in the low byte.
  InfoWithTable swapped{Header(3, 1, 32, BI_BITFIELDS), {0x000000FF, 0x0000FF00, 0x00FF0000}};
  const DWORD bits32[3] = {0x00030201, 0xFF0000FF, 0x00FF0000};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 1, bits32, swapped.info(), DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 3), (Row{RGB(1, 2, 3), RGB(255, 0, 0), RGB(0, 0, 255)}));
}

TEST(GdiDib, SetDIBitsOntoMonoPicksNearestOfBlackAndWhite) {
  MemSurface mono(3, 1, true);
  BITMAPINFO info{};
  info.bmiHeader = Header(3, 1, 24);
  const BYTE bits[12] = {255, 255, 255, 10, 10, 10, 200, 200, 0, 0, 0, 0};
  ASSERT_EQ(SetDIBits(mono.dc(), mono.bitmap(), 0, 1, bits, &info, DIB_RGB_COLORS), 1);
  EXPECT_EQ(mono.Row(0, 3), (Row{kWhite, kBlack, kWhite}));
}

TEST(GdiDib, DibSectionBitsOnlyForTopDown32Bit) {
  BITMAPINFO info{};
  info.bmiHeader = Header(2, 2, 24);
  void* bits = reinterpret_cast<void*>(1);
  HBITMAP section = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  ASSERT_NE(section, nullptr);
  EXPECT_EQ(bits, nullptr);
  DIBSECTION ds{};
  ASSERT_EQ(GetObjectA(section, sizeof ds, &ds), 84);
  EXPECT_EQ(ds.dsBm.bmBitsPixel, 32);
  EXPECT_EQ(ds.dsBm.bmWidthBytes, 8);
  EXPECT_TRUE(DeleteObject(section));
  int dummy = 0;
  EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, &dummy, 0), nullptr);
  info.bmiHeader = Header(2, 0, 32);
  EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0), nullptr);
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
