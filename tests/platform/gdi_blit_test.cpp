#include <random>
#include <vector>

#include "platform/gdi_test_support.h"
#include "platform/kept_bitmaps.h"

using gdi_test::kBlack;
using gdi_test::kWhite;
using gdi_test::MemSurface;
using Row = std::vector<COLORREF>;

namespace {

constexpr COLORREF kD0 = 0x00336699;
constexpr COLORREF kD1 = 0x00FFFFFF;

// Every raster operation against the rule that defines it, written out bit by bit:
// bit k of the result is bit (P*4 + S*2 + D) of the operation index, where P, S and D
// are bit k of the pattern (the brush), the source and the destination.
COLORREF ReferenceRop(int index, COLORREF p, COLORREF s, COLORREF d) {
  COLORREF result = 0;
  for (int bit = 0; bit < 24; ++bit) {
    const int term = static_cast<int>(((p >> bit) & 1) * 4 + ((s >> bit) & 1) * 2 + ((d >> bit) & 1));
    result |= static_cast<COLORREF>((index >> term) & 1) << bit;
  }
  return result;
}

TEST(GdiBitBlt, EveryRasterOperationFollowsTheMintermRuleOnColourAndMono) {
  std::mt19937 random(5);
  constexpr int kWidth = 16;
  for (bool mono : {false, true}) {
    // A monochrome bitmap holds only black and white.
    const auto pick = [&] { return mono ? (random() & 1 ? kWhite : kBlack) : random() & 0xFFFFFF; };
    MemSurface src(kWidth, 1, mono), dst(kWidth, 1, mono);
    for (int index = 0; index < 256; ++index) {
      Row source, before;
      for (int x = 0; x < kWidth; ++x) {
        source.push_back(pick());
        before.push_back(pick());
      }
      src.SetRow(0, source);
      dst.SetRow(0, before);
      const COLORREF pattern = pick();
      HBRUSH brush = CreateSolidBrush(pattern);
      HGDIOBJ previous = SelectObject(dst.dc(), brush);
      ASSERT_TRUE(BitBlt(dst.dc(), 0, 0, kWidth, 1, src.dc(), 0, 0, static_cast<DWORD>(index) << 16));
      SelectObject(dst.dc(), previous);
      DeleteObject(brush);
      Row expected;
      for (int x = 0; x < kWidth; ++x) expected.push_back(ReferenceRop(index, pattern, source[x], before[x]));
      ASSERT_EQ(dst.Row(0, kWidth), expected) << (mono ? "mono" : "colour") << " rop index " << index;
    }
  }
}

TEST(GdiBitBlt, PatternWithHollowBrushPaintsNothing) {
  MemSurface dst(2, 1);
  dst.SetRow(0, {kD0, kD1});
  SelectObject(dst.dc(), GetStockObject(NULL_BRUSH));
  EXPECT_TRUE(BitBlt(dst.dc(), 0, 0, 2, 1, nullptr, 0, 0, PATCOPY));
  EXPECT_EQ(dst.Row(0, 2), (Row{kD0, kD1}));
  SelectObject(dst.dc(), GetStockObject(WHITE_BRUSH));
}

TEST(GdiBitBlt, BrushColourFollowsTheSelectedBitmapsKind) {
  MemSurface mono(2, 1, true);
  HBRUSH light = CreateSolidBrush(RGB(200, 200, 0));
  HGDIOBJ old = SelectObject(mono.dc(), light);
  ASSERT_TRUE(BitBlt(mono.dc(), 0, 0, 2, 1, nullptr, 0, 0, PATCOPY));
  EXPECT_EQ(mono.Row(0, 2), (Row{kWhite, kWhite}));
  // The same DC holding a colour bitmap paints the brush's own colour.
  HBITMAP colour = CreateBitmap(1, 1, 1, 32, nullptr);
  HGDIOBJ monoBitmap = SelectObject(mono.dc(), colour);
  ASSERT_TRUE(BitBlt(mono.dc(), 0, 0, 1, 1, nullptr, 0, 0, PATCOPY));
  EXPECT_EQ(GetPixel(mono.dc(), 0, 0), RGB(200, 200, 0));
  SelectObject(mono.dc(), monoBitmap);
  SelectObject(mono.dc(), old);
  DeleteObject(colour);
  DeleteObject(light);
}

// Mono onto colour takes the destination's background and text colours; colour onto
// mono makes the source's background colour white and every other colour black.
TEST(GdiBitBlt, MonoAndColourSourcesConvertThroughTheirDcsColours) {
  MemSurface mono(2, 1, true), dst(2, 1);
  mono.SetRow(0, {kWhite, kBlack});
  SetBkColor(mono.dc(), RGB(1, 2, 3));  // the source DC's colours play no part
  SetTextColor(mono.dc(), RGB(4, 5, 6));
  SetBkColor(dst.dc(), RGB(10, 200, 30));
  SetTextColor(dst.dc(), RGB(250, 0, 90));
  ASSERT_TRUE(BitBlt(dst.dc(), 0, 0, 2, 1, mono.dc(), 0, 0, SRCCOPY));
  EXPECT_EQ(dst.Row(0, 2), (Row{RGB(10, 200, 30), RGB(250, 0, 90)}));
  // With the default white/black colours SRCAND keeps the target under 1 bits only.
  MemSurface target(2, 1);
  target.SetRow(0, {kD0, kD0});
  ASSERT_TRUE(BitBlt(target.dc(), 0, 0, 2, 1, mono.dc(), 0, 0, SRCAND));
  EXPECT_EQ(target.Row(0, 2), (Row{kD0, kBlack}));

  MemSurface src(3, 1), monoTarget(3, 1, true);
  const COLORREF key = RGB(19, 67, 11);
  src.SetRow(0, {key, RGB(19, 67, 12), kWhite});
  SetBkColor(src.dc(), key);
  SetBkColor(monoTarget.dc(), RGB(9, 9, 9));  // the destination's colours play no part
  ASSERT_TRUE(BitBlt(monoTarget.dc(), 0, 0, 3, 1, src.dc(), 0, 0, SRCCOPY));
  EXPECT_EQ(monoTarget.Row(0, 3), (Row{kWhite, kBlack, kBlack}));
}

TEST(GdiBitBlt, PixelsWhoseSourceLiesOutsideTheSourceStayUnchanged) {
  MemSurface src(2, 2), dst(4, 4);
  src.Fill(RGB(1, 2, 3));
  dst.Fill(kD0);
  ASSERT_TRUE(BitBlt(dst.dc(), 0, 0, 4, 4, src.dc(), -1, -1, SRCCOPY));
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) {
      const bool inside = x >= 1 && x <= 2 && y >= 1 && y <= 2;
      EXPECT_EQ(GetPixel(dst.dc(), x, y), inside ? RGB(1, 2, 3) : kD0) << x << "," << y;
    }
  }
  // A destination partly outside its bitmap is clipped, not wrapped.
  ASSERT_TRUE(BitBlt(dst.dc(), 3, 3, 2, 2, src.dc(), 0, 0, BLACKNESS));
  EXPECT_EQ(GetPixel(dst.dc(), 3, 3), kBlack);
  EXPECT_EQ(GetPixel(dst.dc(), 0, 3), kD0);
}

TEST(GdiBitBlt, OverlappingCopyWithinOneBitmapReadsTheOriginal) {
  MemSurface s(4, 4);
  for (int y = 0; y < 4; ++y) s.SetRow(y, {RGB(y, 0, 0), RGB(y, 1, 0), RGB(y, 2, 0), RGB(y, 3, 0)});
  ASSERT_TRUE(BitBlt(s.dc(), 1, 1, 3, 3, s.dc(), 0, 0, SRCCOPY));
  EXPECT_EQ(s.Row(3, 4), (Row{RGB(3, 0, 0), RGB(2, 0, 0), RGB(2, 1, 0), RGB(2, 2, 0)}));
  EXPECT_EQ(s.Row(1, 4), (Row{RGB(1, 0, 0), RGB(0, 0, 0), RGB(0, 1, 0), RGB(0, 2, 0)}));
  // The same for a non-copy operation, leftwards and upwards.
  ASSERT_TRUE(BitBlt(s.dc(), 0, 0, 3, 3, s.dc(), 1, 1, SRCINVERT));
  EXPECT_EQ(GetPixel(s.dc(), 0, 0), RGB(0, 0, 0) ^ RGB(0, 0, 0));
  EXPECT_EQ(GetPixel(s.dc(), 1, 0), RGB(0, 1, 0) ^ RGB(0, 1, 0));
}

TEST(GdiBitBlt, FailsOnBadHandlesWithoutDrawing) {
  MemSurface dst(2, 1);
  HDC gone = CreateCompatibleDC(nullptr);
  DeleteDC(gone);
  EXPECT_FALSE(BitBlt(dst.dc(), 0, 0, 2, 1, gone, 0, 0, SRCCOPY));
  EXPECT_FALSE(BitBlt(gone, 0, 0, 2, 1, dst.dc(), 0, 0, SRCCOPY));
  EXPECT_FALSE(BitBlt(dst.dc(), 0, 0, 2, 1, nullptr, 0, 0, SRCCOPY));
  HDC screen = platform::CreateScreenDC();
  EXPECT_FALSE(BitBlt(dst.dc(), 0, 0, 2, 1, screen, 0, 0, SRCCOPY));
  DeleteDC(screen);
}

TEST(GdiFillRect, SolidStockAndHollowBrushes) {
  MemSurface s(3, 2);
  s.Fill(kD0);
  const RECT r{1, 0, 3, 1};
  HBRUSH green = CreateSolidBrush(RGB(0, 255, 0));
  EXPECT_TRUE(FillRect(s.dc(), &r, green));
  EXPECT_EQ(s.Row(0, 3), (Row{kD0, RGB(0, 255, 0), RGB(0, 255, 0)}));
  EXPECT_TRUE(FillRect(s.dc(), &r, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))));
  EXPECT_EQ(s.Row(0, 3), (Row{kD0, RGB(0, 255, 0), RGB(0, 255, 0)}));
  const RECT huge{-100000, -100000, 100000, 100000};
  EXPECT_TRUE(FillRect(s.dc(), &huge, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))));
  EXPECT_EQ(s.Row(1, 3), (Row{kBlack, kBlack, kBlack}));
  DeleteObject(green);
  EXPECT_FALSE(FillRect(s.dc(), &r, green));
}

TEST(GdiPixels, MonoSnapsToTheNearerOfBlackAndWhiteAndOutsideTheBitmapIsInvalid) {
  MemSurface mono(2, 1, true);
  EXPECT_EQ(SetPixel(mono.dc(), 0, 0, RGB(200, 200, 0)), kWhite);    // 400 > 382
  EXPECT_EQ(SetPixel(mono.dc(), 1, 0, RGB(127, 128, 127)), kBlack);  // 382 is not above half
  MemSurface s(2, 2);
  EXPECT_EQ(SetPixel(s.dc(), 1, 1, 0x01020304), RGB(4, 3, 2));  // the top byte is not a colour
  EXPECT_EQ(GetPixel(s.dc(), 1, 1), RGB(4, 3, 2));
  EXPECT_EQ(GetPixel(s.dc(), 2, 0), CLR_INVALID);
  EXPECT_EQ(GetPixel(s.dc(), 0, -1), CLR_INVALID);
  EXPECT_EQ(SetPixel(s.dc(), -1, 0, kWhite), CLR_INVALID);
}

TEST(GdiCopyImage, IndependentDibSectionCopyEvenWhileSelected) {
  const int before = platform::LiveGdiObjects().bitmaps;
  MemSurface s(2, 2);
  s.SetRow(0, {RGB(1, 2, 3), RGB(4, 5, 6)});
  HBITMAP copy = static_cast<HBITMAP>(CopyImage(s.bitmap(), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(platform::LiveGdiObjects().bitmaps, before + 2);
  DIBSECTION section{};
  EXPECT_EQ(GetObjectA(copy, sizeof section, &section), static_cast<int>(sizeof(DIBSECTION)));
  EXPECT_EQ(section.dsBm.bmWidth, 2);
  EXPECT_EQ(section.dsBm.bmHeight, 2);
  s.SetRow(0, {kBlack, kBlack});  // changing the original leaves the copy alone
  MemSurface view(1, 1);
  HGDIOBJ old = SelectObject(view.dc(), copy);
  ASSERT_NE(old, nullptr);
  EXPECT_EQ(GetPixel(view.dc(), 0, 0), RGB(1, 2, 3));
  EXPECT_EQ(GetPixel(view.dc(), 1, 0), RGB(4, 5, 6));
  SelectObject(view.dc(), old);
  HBITMAP wide = static_cast<HBITMAP>(CopyImage(copy, IMAGE_BITMAP, 4, 2, LR_CREATEDIBSECTION));
  old = SelectObject(view.dc(), wide);
  EXPECT_EQ(view.Row(0, 4), (Row{RGB(1, 2, 3), RGB(1, 2, 3), RGB(4, 5, 6), RGB(4, 5, 6)}));
  SelectObject(view.dc(), old);
  EXPECT_TRUE(DeleteObject(wide));
  EXPECT_TRUE(DeleteObject(copy));
  EXPECT_EQ(CopyImage(copy, IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION), nullptr);
}

TEST(GdiWindowDc, DrawsAtItsOriginAndOnlyInsideItsClip) {
  HBITMAP frame = CreateBitmap(6, 4, 1, 32, nullptr);
  HDC window = platform::CreateWindowDC(frame, 2, 1, RECT{2, 1, 4, 3});
  ASSERT_NE(window, nullptr);
  const RECT all{-10, -10, 10, 10};
  FillRect(window, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  EXPECT_EQ(SetPixel(window, 0, 0, RGB(1, 1, 1)), RGB(1, 1, 1));
  EXPECT_EQ(SetPixel(window, 2, 0, RGB(1, 1, 1)), CLR_INVALID);  // frame x 4 is outside the clip
  EXPECT_FALSE(DeleteObject(frame));                             // the window DC still draws into it
  int width = 0, height = 0;
  const std::uint32_t* pixels = platform::BitmapPixels(frame, &width, &height);
  ASSERT_NE(pixels, nullptr);
  ASSERT_EQ(width, 6);
  ASSERT_EQ(height, 4);
  std::vector<std::uint32_t> expected(24, 0);
  expected[1 * 6 + 2] = 0x010101;
  expected[1 * 6 + 3] = expected[2 * 6 + 2] = expected[2 * 6 + 3] = 0xFFFFFF;
  EXPECT_EQ(std::vector<std::uint32_t>(pixels, pixels + 24), expected);
  EXPECT_EQ(GetObjectType(window), static_cast<DWORD>(OBJ_DC));
  EXPECT_EQ(SelectObject(window, frame), nullptr);
  EXPECT_TRUE(DeleteDC(window));
  EXPECT_TRUE(DeleteObject(frame));
}

}  // namespace

// The 1:1 span kernel against the rule pixel by pixel, on random pictures with the
// key colour in runs and whole rows, for rectangles inside, across and outside both
// bitmaps (odd sizes, one pixel); every other source mostly key-coloured and kept
// packed, as a drawing layer restored from the history is read. The stretched one
// below against StretchBlt's nearest-pixel sampling followed by the same rule.
TEST(GdiTransparentBlt, OneToOneCopyMatchesThePixelRule) {
  std::mt19937 random(13);
  const COLORREF key = RGB(0x13, 0x43, 0x0B);
  const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 60; ++round) {
    const int sw = 1 + pick(37), sh = 1 + pick(40), dw = 1 + pick(37), dh = 1 + pick(40);
    MemSurface src(sw, sh), dst(dw, dh);
    std::vector<std::vector<COLORREF>> source(static_cast<std::size_t>(sh)),
        target(static_cast<std::size_t>(dh));
    const bool packed = round % 2 == 1;
    for (int y = 0; y < sh; ++y) {
      const bool keyRow = pick(3) == 0;
      while (static_cast<int>(source[y].size()) < sw) {
        // Packed sources come in runs (of the key mostly), as strokes on a layer do.
        const int run = packed ? 1 + pick(6) : 1;
        const bool keyed = keyRow || (packed ? pick(4) != 0 : pick(2) != 0);
        const COLORREF color = keyed ? key : static_cast<COLORREF>(random() & 0xFFFFFF);
        for (int i = 0; i < run && static_cast<int>(source[y].size()) < sw; ++i) source[y].push_back(color);
      }
      src.SetRow(y, source[y]);
    }
    if (packed) {
      ASSERT_TRUE(platform::CompactBitmap(src.bitmap()));
    }
    // The destination shares its rows with a twin, as the composition shares the
    // image surface's, and must not change the twin's.
    MemSurface twin(dw, dh);
    for (int y = 0; y < dh; ++y) {
      for (int x = 0; x < dw; ++x) target[y].push_back(static_cast<COLORREF>(random() & 0xFFFFFF));
      twin.SetRow(y, target[y]);
    }
    const std::vector<std::vector<COLORREF>> original = target;
    ASSERT_TRUE(BitBlt(dst.dc(), 0, 0, dw, dh, twin.dc(), 0, 0, SRCCOPY));
    // Half the rounds copy onto whole destination rows.
    const bool wholeRows = round % 4 < 2;
    const int w = wholeRows ? dw + 5 + pick(6) : 1 + pick(40), h = 1 + pick(40);
    const int x = wholeRows ? -pick(5) : pick(dw + 10) - 5, y = pick(dh + 10) - 5;
    const int sx = wholeRows ? pick(5) - 5 : pick(sw + 10) - 5, sy = pick(sh + 10) - 5;
    ASSERT_TRUE(TransparentBlt(dst.dc(), x, y, w, h, src.dc(), sx, sy, w, h, key));
    for (int j = 0; j < h; ++j) {
      for (int i = 0; i < w; ++i) {
        const bool inside = x + i >= 0 && x + i < dw && y + j >= 0 && y + j < dh && sx + i >= 0 &&
                            sx + i < sw && sy + j >= 0 && sy + j < sh;
        if (inside && source[sy + j][sx + i] != key) target[y + j][x + i] = source[sy + j][sx + i];
      }
    }
    for (int row = 0; row < dh; ++row) {
      ASSERT_EQ(dst.Row(row, dw), target[row]) << "round " << round;
      ASSERT_EQ(twin.Row(row, dw), original[row]) << "round " << round;
    }
  }
}

TEST(GdiTransparentBlt, StretchedCopyMatchesNearestSamplingThenTheKeyRule) {
  std::mt19937 random(29);
  const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 80; ++round) {
    // Every fourth source is monochrome: its pixels go through the colour rule.
    const bool mono = round % 4 == 3;
    const COLORREF key = mono ? kWhite : RGB(0x13, 0x43, 0x0B);
    const int sw = 1 + pick(30), sh = 1 + pick(30), dw = 1 + pick(37), dh = 1 + pick(40);
    MemSurface src(sw, sh, mono), dst(dw, dh), sampled(dw, dh);
    for (int y = 0; y < sh; ++y) {
      const bool keyRow = pick(3) == 0;
      Row row;
      for (int x = 0; x < sw; ++x)
        row.push_back(keyRow || pick(2) ? key : static_cast<COLORREF>(random() & 0xFFFFFF));
      src.SetRow(y, row);
    }
    for (int y = 0; y < dh; ++y) {
      Row row;
      for (int x = 0; x < dw; ++x) row.push_back(static_cast<COLORREF>(random() & 0xFFFFFF));
      dst.SetRow(y, row);
    }
    const int w = 1 + pick(45), h = 1 + pick(45), srcW = 1 + pick(35), srcH = 1 + pick(35);
    const int x = pick(dw + 10) - 5, y = pick(dh + 10) - 5, sx = pick(sw + 6) - 3, sy = pick(sh + 6) - 3;
    // Pixels the sampling does not reach keep the key, and are left alone like key pixels.
    sampled.Fill(mono ? kWhite : key);
    SetStretchBltMode(sampled.dc(), COLORONCOLOR);
    StretchBlt(sampled.dc(), x, y, w, h, src.dc(), sx, sy, srcW, srcH, SRCCOPY);
    std::vector<Row> expected;
    for (int row = 0; row < dh; ++row) {
      expected.push_back(dst.Row(row, dw));
      const Row drawn = sampled.Row(row, dw);
      for (int i = 0; i < dw; ++i) {
        if (drawn[i] != key) expected[row][i] = drawn[i];
      }
    }
    ASSERT_TRUE(TransparentBlt(dst.dc(), x, y, w, h, src.dc(), sx, sy, srcW, srcH, key));
    for (int row = 0; row < dh; ++row) ASSERT_EQ(dst.Row(row, dw), expected[row]) << "round " << round;
  }
}
