// Drawing primitives beyond the oracle pictures: pen creation rules, clipping against a
// window DC's origin and clip, not-xor reversibility, flood fill limits and calls far
// outside any surface.
#include "platform/gdi_draw.h"

#include <climits>
#include <random>
#include <vector>

#include "platform/gdi_test_support.h"

using gdi_test::kBlack;
using gdi_test::kWhite;
using gdi_test::MemSurface;

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kKey = RGB(0x13, 0x43, 0x0B);

HPEN Pen(DWORD style, DWORD width, COLORREF color = kRed) {
  const LOGBRUSH solid{BS_SOLID, color, 0};
  return ExtCreatePen(style, width, &solid, 0, nullptr);
}

TEST(GdiDraw, PensAreMadeOnlyForWhatTheRasterDraws) {
  const auto before = platform::LiveGdiObjects();
  const LOGBRUSH solid{BS_SOLID, kRed, 0};
  const LOGBRUSH hatched{2, kRed, 0};
  const DWORD dashes[2] = {3, 1};
  EXPECT_EQ(ExtCreatePen(PS_COSMETIC | PS_SOLID, 2, &solid, 0, nullptr), nullptr);  // cosmetic is 1 wide
  EXPECT_EQ(ExtCreatePen(PS_GEOMETRIC | PS_DOT, 3, &solid, 0, nullptr), nullptr);
  EXPECT_EQ(ExtCreatePen(PS_GEOMETRIC | 0x1000, 3, &solid, 0, nullptr), nullptr);  // bevel joins
  EXPECT_EQ(ExtCreatePen(PS_GEOMETRIC | 7, 3, &solid, 2, dashes), nullptr);        // user styles
  EXPECT_EQ(ExtCreatePen(PS_GEOMETRIC, 3, &hatched, 0, nullptr), nullptr);
  EXPECT_EQ(ExtCreatePen(PS_GEOMETRIC, 3, nullptr, 0, nullptr), nullptr);
  EXPECT_EQ(CreatePen(PS_DASH, 1, kRed), nullptr);
  EXPECT_EQ(platform::LiveGdiObjects().pens, before.pens);

  // CreatePen: 0 and +-1 are cosmetic; wider is a round geometric pen.
  MemSurface s(20, 8);
  s.Fill(kWhite);
  for (int width : {-1, 0, 1, 3, -3}) {
    HPEN pen = CreatePen(PS_SOLID, width, kRed);
    ASSERT_NE(pen, nullptr) << width;
    HGDIOBJ old = SelectObject(s.dc(), pen);
    s.Fill(kWhite);
    MoveToEx(s.dc(), 4, 4, nullptr);
    LineTo(s.dc(), 10, 4);
    const bool wide = width == 3 || width == -3;
    EXPECT_EQ(GetPixel(s.dc(), 3, 4), wide ? kRed : kWhite) << width;  // the round cap
    EXPECT_EQ(GetPixel(s.dc(), 10, 4), wide ? kRed : kWhite) << width;
    EXPECT_EQ(GetPixel(s.dc(), 9, 4), kRed) << width;
    SelectObject(s.dc(), old);
    EXPECT_TRUE(DeleteObject(pen));
  }
  // A null brush in the LOGBRUSH makes a pen that draws nothing.
  const LOGBRUSH hollow{BS_NULL, kRed, 0};
  HPEN invisible = ExtCreatePen(PS_GEOMETRIC, 5, &hollow, 0, nullptr);
  HGDIOBJ old = SelectObject(s.dc(), invisible);
  s.Fill(kWhite);
  MoveToEx(s.dc(), 2, 4, nullptr);
  EXPECT_TRUE(LineTo(s.dc(), 18, 4));
  EXPECT_EQ(s.Pixels(), std::vector<COLORREF>(160, kWhite));
  SelectObject(s.dc(), old);
  DeleteObject(invisible);
  EXPECT_EQ(platform::LiveGdiObjects().pens, before.pens);
}

TEST(GdiDraw, MonochromeSurfacesTakeTheNearestOfBlackAndWhite) {
  MemSurface mono(8, 3, true);
  mono.Fill(kWhite);
  HPEN dark = CreatePen(PS_SOLID, 1, RGB(100, 100, 200));  // 400 > 382: white
  HGDIOBJ old = SelectObject(mono.dc(), dark);
  SetROP2(mono.dc(), R2_NOTXORPEN);  // white pen on white: ~(1 ^ 1) = 1, unchanged
  MoveToEx(mono.dc(), 0, 1, nullptr);
  LineTo(mono.dc(), 8, 1);
  EXPECT_EQ(mono.Row(1, 8), std::vector<COLORREF>(8, kWhite));
  SetROP2(mono.dc(), R2_XORPEN);  // 1 ^ 1 = 0
  MoveToEx(mono.dc(), 0, 1, nullptr);
  LineTo(mono.dc(), 8, 1);
  EXPECT_EQ(mono.Row(1, 8), std::vector<COLORREF>(8, kBlack));
  SelectObject(mono.dc(), old);
  DeleteObject(dark);
}

// A window DC draws at its origin and only inside its clip: every figure drawn through
// one must leave exactly the clipped, shifted pixels of the same figure drawn on a
// memory surface, and drawn twice in not-xor must leave the frame as it was.
TEST(GdiDraw, WindowDcClipAndOriginAgreeWithAWholeSurface) {
  constexpr int kSize = 64;
  constexpr int kOriginX = 7, kOriginY = -5;
  const RECT clip{13, 4, 45, 37};
  std::mt19937 random(20240611);
  auto coordinate = [&random] { return std::uniform_int_distribution<int>(-30, kSize + 30)(random); };
  for (int round = 0; round < 60; ++round) {
    const int kind = round % 5;
    const DWORD width = std::uniform_int_distribution<DWORD>(1, 9)(random);
    const DWORD style = round % 3 == 0 ? PS_COSMETIC | (round % 2 ? PS_DOT : PS_SOLID)
                                       : PS_GEOMETRIC | (round % 2 ? PS_ENDCAP_SQUARE : PS_ENDCAP_ROUND);
    const int p[8] = {coordinate(), coordinate(), coordinate(), coordinate(),
                      coordinate(), coordinate(), coordinate(), coordinate()};
    auto draw = [&](HDC dc) {
      HPEN pen = Pen(style, (style & PS_TYPE_MASK) == PS_GEOMETRIC ? width : 1);
      HBRUSH brush = CreateSolidBrush(RGB(0, 0, 255));
      HGDIOBJ oldPen = SelectObject(dc, pen);
      HGDIOBJ oldBrush = SelectObject(dc, brush);
      const POINT curve[4] = {{p[0], p[1]}, {p[2], p[3]}, {p[4], p[5]}, {p[6], p[7]}};
      switch (kind) {
        case 0:
          MoveToEx(dc, p[0], p[1], nullptr);
          LineTo(dc, p[2], p[3]);
          LineTo(dc, p[4], p[5]);
          break;
        case 1:
          Rectangle(dc, p[0], p[1], p[2], p[3]);
          break;
        case 2:
          Ellipse(dc, p[0], p[1], p[2], p[3]);
          break;
        case 3:
          PolyBezier(dc, curve, 4);
          break;
        default:
          MoveToEx(dc, p[0], p[1], nullptr);
          LineTo(dc, p[0] + 1, p[1]);  // a tool's dot
      }
      SelectObject(dc, oldPen);
      SelectObject(dc, oldBrush);
      DeleteObject(pen);
      DeleteObject(brush);
    };
    MemSurface whole(kSize, kSize);
    whole.Fill(kKey);
    draw(whole.dc());

    MemSurface frame(kSize + 20, kSize + 20);
    frame.Fill(kKey);
    HDC window = platform::CreateWindowDC(frame.bitmap(), kOriginX, kOriginY, clip);
    ASSERT_NE(window, nullptr);
    draw(window);
    for (int y = 0; y < kSize + 20; ++y) {
      for (int x = 0; x < kSize + 20; ++x) {
        const bool inside = x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
        const COLORREF expected = inside ? GetPixel(whole.dc(), x - kOriginX, y - kOriginY) : kKey;
        ASSERT_EQ(GetPixel(frame.dc(), x, y), expected) << "round " << round << " at " << x << "," << y;
      }
    }
    SetROP2(window, R2_NOTXORPEN);
    const auto drawn = frame.Pixels();
    draw(window);
    draw(window);
    EXPECT_EQ(frame.Pixels(), drawn) << "round " << round;
    DeleteDC(window);
  }
}

TEST(GdiDraw, CoordinatesBeyondDeviceSpaceFailAndHugeFiguresStayCheap) {
  MemSurface s(40, 20);
  s.Fill(kWhite);
  const auto white = s.Pixels();
  HPEN wide = Pen(PS_GEOMETRIC, 100000);
  HGDIOBJ old = SelectObject(s.dc(), wide);
  for (int far : {INT_MIN, INT_MAX, (1 << 27) + 1}) {
    MoveToEx(s.dc(), 0, 0, nullptr);
    EXPECT_FALSE(LineTo(s.dc(), far, 5)) << far;
    EXPECT_FALSE(Rectangle(s.dc(), far, 0, 10, 10)) << far;
    EXPECT_FALSE(Ellipse(s.dc(), 0, far, 10, 10)) << far;
    const POINT curve[4] = {{0, 0}, {far, 0}, {0, 0}, {5, 5}};
    EXPECT_FALSE(PolyBezier(s.dc(), curve, 4)) << far;
    EXPECT_FALSE(ExtFloodFill(s.dc(), far, 0, kWhite, FLOODFILLSURFACE)) << far;
  }
  EXPECT_EQ(s.Pixels(), white);
  // At the edge of device space the figures still draw, clipped to the surface.
  MoveToEx(s.dc(), -(1 << 27), -(1 << 27), nullptr);
  EXPECT_TRUE(LineTo(s.dc(), 1 << 27, 1 << 27));
  EXPECT_EQ(s.Pixels(), std::vector<COLORREF>(800, kRed));
  SelectObject(s.dc(), old);
  DeleteObject(wide);

  s.Fill(kWhite);
  HPEN thin = Pen(PS_COSMETIC, 1);
  old = SelectObject(s.dc(), thin);
  MoveToEx(s.dc(), -(1 << 27), 7, nullptr);
  EXPECT_TRUE(LineTo(s.dc(), 1 << 27, 8));  // half way at x = 0: halves round down
  EXPECT_EQ(GetPixel(s.dc(), 0, 7), kRed);
  EXPECT_EQ(GetPixel(s.dc(), 1, 8), kRed);
  EXPECT_EQ(GetPixel(s.dc(), 39, 8), kRed);
  EXPECT_EQ(GetPixel(s.dc(), 0, 8), kWhite);
  EXPECT_FALSE(Ellipse(s.dc(), -(1 << 20), 0, 1 << 20, 10));  // too large to trace
  SelectObject(s.dc(), old);
  DeleteObject(thin);
  // A pen wider than the raster traces is refused when made, at either sign.
  const LOGBRUSH solid{BS_SOLID, kRed, 0};
  for (DWORD width : {(1u << 18) + 1, 0u - ((1u << 18) + 1)})
    EXPECT_EQ(ExtCreatePen(PS_GEOMETRIC, width, &solid, 0, nullptr), nullptr) << width;
  EXPECT_EQ(CreatePen(PS_SOLID, (1 << 18) + 1, kRed), nullptr);
  HPEN widest = Pen(PS_GEOMETRIC, 1 << 18);
  ASSERT_NE(widest, nullptr);
  old = SelectObject(s.dc(), widest);
  MoveToEx(s.dc(), 0, 0, nullptr);
  EXPECT_TRUE(LineTo(s.dc(), 5, 5));
  EXPECT_EQ(s.Pixels(), std::vector<COLORREF>(800, kRed));
  SelectObject(s.dc(), old);
  DeleteObject(widest);
}

TEST(GdiDraw, FloodFillStaysInsideItsColourAndTheClip) {
  MemSurface frame(30, 10);
  frame.Fill(kWhite);
  HDC window = platform::CreateWindowDC(frame.bitmap(), 0, 0, RECT{5, 0, 20, 10});
  HBRUSH red = CreateSolidBrush(kRed);
  HGDIOBJ old = SelectObject(window, red);
  EXPECT_FALSE(ExtFloodFill(window, 2, 2, kWhite, FLOODFILLSURFACE));  // outside the clip
  EXPECT_FALSE(ExtFloodFill(window, 8, 2, kBlack, FLOODFILLSURFACE));  // another colour there
  EXPECT_FALSE(ExtFloodFill(window, 8, 2, kWhite, FLOODFILLBORDER));
  EXPECT_TRUE(ExtFloodFill(window, 8, 2, kWhite, FLOODFILLSURFACE));
  for (int x = 0; x < 30; ++x) {
    EXPECT_EQ(GetPixel(frame.dc(), x, 9), x >= 5 && x < 20 ? kRed : kWhite) << x;
  }
  // Painting the colour the area already has, or with the null brush, changes nothing.
  EXPECT_TRUE(ExtFloodFill(window, 8, 2, kRed, FLOODFILLSURFACE));
  SelectObject(window, GetStockObject(NULL_BRUSH));
  EXPECT_TRUE(ExtFloodFill(window, 8, 2, kRed, FLOODFILLSURFACE));
  EXPECT_EQ(GetPixel(frame.dc(), 8, 2), kRed);
  SelectObject(window, old);
  DeleteObject(red);
  DeleteDC(window);
}

}  // namespace
