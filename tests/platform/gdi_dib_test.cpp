#include <vector>

#include "platform/gdi_test_support.h"

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

}  // namespace
