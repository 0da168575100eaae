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

TEST(GdiDib, StartAndLinesSelectScanLinesAndBadArgumentsTransferNothing) {
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

// The product transfers only 24-bit rows; of the other formats, what guards memory:
// an index past a short colour table, and a monochrome target.
TEST(GdiDib, AShortColourTableReadsBlackAndMonoTargetsTakeTheNearerOfBlackAndWhite) {
  MemSurface s(5, 1);
  InfoWithTable four{Header(5, 1, 4, BI_RGB, 3), {0x00FF0000, 0x0000FF00, 0x000000FF}};
  const BYTE fourBits[4] = {0x01, 0x2F, 0x10, 0};
  ASSERT_EQ(SetDIBits(s.dc(), s.bitmap(), 0, 1, fourBits, four.info(), DIB_RGB_COLORS), 1);
  EXPECT_EQ(s.Row(0, 5), (Row{RGB(255, 0, 0), RGB(0, 255, 0), RGB(0, 0, 255), kBlack, RGB(0, 255, 0)}));

  MemSurface mono(3, 1, true);
  BITMAPINFO info{};
  info.bmiHeader = Header(3, 1, 24);
  const BYTE bits[12] = {255, 255, 255, 10, 10, 10, 200, 200, 0, 0, 0, 0};
  ASSERT_EQ(SetDIBits(mono.dc(), mono.bitmap(), 0, 1, bits, &info, DIB_RGB_COLORS), 1);
  EXPECT_EQ(mono.Row(0, 3), (Row{kWhite, kBlack, kWhite}));
}

}  // namespace
