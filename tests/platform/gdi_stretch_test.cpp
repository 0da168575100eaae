#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "platform/gdi_objects.h"
#include "platform/gdi_test_support.h"

using gdi_test::kBlack;
using gdi_test::kWhite;
using gdi_test::MemSurface;
using Row = std::vector<COLORREF>;

namespace {

COLORREF Gray(int v) { return RGB(v, v, v); }

Row StretchRow(const Row& source, int width, int mode) {
  MemSurface src(static_cast<int>(source.size()), 1), dst(width, 1);
  src.SetRow(0, source);
  SetStretchBltMode(dst.dc(), mode);
  EXPECT_TRUE(
      StretchBlt(dst.dc(), 0, 0, width, 1, src.dc(), 0, 0, static_cast<int>(source.size()), 1, SRCCOPY));
  return dst.Row(0, width);
}

TEST(GdiStretch, HalftoneTwoDimensionalMixesAxes) {
  // 2x2 -> 1x4: rows averaged (shrink) across, interpolated (enlarge) down.
  MemSurface src(2, 2), dst(1, 4);
  src.SetRow(0, {Gray(0), Gray(100)});
  src.SetRow(1, {Gray(200), Gray(100)});
  SetStretchBltMode(dst.dc(), HALFTONE);
  ASSERT_TRUE(StretchBlt(dst.dc(), 0, 0, 1, 4, src.dc(), 0, 0, 2, 2, SRCCOPY));
  EXPECT_EQ(GetPixel(dst.dc(), 0, 0), Gray(50));
  EXPECT_EQ(GetPixel(dst.dc(), 0, 1), Gray(75));  // 50 * 3/4 + 150 * 1/4
  EXPECT_EQ(GetPixel(dst.dc(), 0, 3), Gray(150));
}

// The area average written out directly in two dimensions: every source pixel's
// overlap with the destination pixel, in units of 1/(dw*dh) source pixels.
COLORREF NaiveShrink(const std::vector<int>& src, int sw, int sh, int dw, int dh, int x, int y) {
  std::uint64_t sum = 0;
  for (int j = 0; j < sh; ++j) {
    const std::int64_t oy = std::max<std::int64_t>(
        0, std::min<std::int64_t>((j + 1) * dh, (y + 1) * sh) - std::max<std::int64_t>(j * dh, y * sh));
    for (int i = 0; i < sw; ++i) {
      const std::int64_t ox = std::max<std::int64_t>(
          0, std::min<std::int64_t>((i + 1) * dw, (x + 1) * sw) - std::max<std::int64_t>(i * dw, x * sw));
      sum += static_cast<std::uint64_t>(ox * oy * src[j * sw + i]);
    }
  }
  const std::uint64_t total = static_cast<std::uint64_t>(sw) * sh;
  return Gray(static_cast<int>((sum + total / 2) / total));
}

TEST(GdiStretch, HalftoneShrinkAgreesWithDirectAreaSumOnRandomImages) {
  std::mt19937 random(20261123);
  for (int round = 0; round < 20; ++round) {
    const int sw = 2 + static_cast<int>(random() % 30), sh = 2 + static_cast<int>(random() % 30);
    const int dw = 1 + static_cast<int>(random() % sw), dh = 1 + static_cast<int>(random() % sh);
    std::vector<int> values(static_cast<std::size_t>(sw * sh));
    MemSurface src(sw, sh), dst(dw, dh);
    for (int y = 0; y < sh; ++y) {
      for (int x = 0; x < sw; ++x) {
        values[y * sw + x] = static_cast<int>(random() % 256);
        SetPixel(src.dc(), x, y, Gray(values[y * sw + x]));
      }
    }
    SetStretchBltMode(dst.dc(), HALFTONE);
    ASSERT_TRUE(StretchBlt(dst.dc(), 0, 0, dw, dh, src.dc(), 0, 0, sw, sh, SRCCOPY));
    for (int y = 0; y < dh; ++y) {
      for (int x = 0; x < dw; ++x) {
        ASSERT_EQ(GetPixel(dst.dc(), x, y), NaiveShrink(values, sw, sh, dw, dh, x, y))
            << sw << "x" << sh << " -> " << dw << "x" << dh << " at " << x << "," << y;
      }
    }
  }
}

TEST(GdiStretch, DefaultModesSampleOrMergeScans) {
  const COLORREF red = RGB(255, 0, 0), green = RGB(0, 255, 0);
  // BLACKONWHITE keeps black: merged pixels are ANDed; WHITEONBLACK ORs them.
  EXPECT_EQ(StretchRow({red, kWhite, green, green}, 2, BLACKONWHITE), (Row{red, green}));
  EXPECT_EQ(StretchRow({red, green, kBlack, green}, 2, BLACKONWHITE), (Row{kBlack, kBlack}));
  EXPECT_EQ(StretchRow({red, green, kBlack, green}, 2, WHITEONBLACK), (Row{RGB(255, 255, 0), green}));
  // COLORONCOLOR deletes: each destination pixel takes the source pixel under its centre.
  EXPECT_EQ(StretchRow({Gray(1), Gray(2), Gray(3), Gray(4)}, 2, COLORONCOLOR), (Row{Gray(2), Gray(4)}));
  // Which source pixels merge, as GDI draws it (powers of two show the sets under OR).
  const Row powers{Gray(1), Gray(2), Gray(4), Gray(8), Gray(16), Gray(32), Gray(64)};
  EXPECT_EQ(StretchRow(powers, 3, WHITEONBLACK), (Row{Gray(3), Gray(28), Gray(96)}));
  EXPECT_EQ(StretchRow(powers, 5, WHITEONBLACK), (Row{Gray(1), Gray(6), Gray(8), Gray(48), Gray(64)}));
  EXPECT_EQ(StretchRow({Gray(1), Gray(2), Gray(4), Gray(8)}, 3, WHITEONBLACK),
            (Row{Gray(1), Gray(6), Gray(8)}));
  EXPECT_EQ(StretchRow(powers, 3, COLORONCOLOR), (Row{Gray(2), Gray(16), Gray(64)}));
  // Enlarging replicates in every non-halftone mode.
  for (int mode : {BLACKONWHITE, WHITEONBLACK, COLORONCOLOR}) {
    EXPECT_EQ(StretchRow({Gray(1), Gray(2)}, 5, mode), (Row{Gray(1), Gray(1), Gray(1), Gray(2), Gray(2)}));
    EXPECT_EQ(StretchRow({Gray(1), Gray(2)}, 3, mode), (Row{Gray(1), Gray(1), Gray(2)}));
  }
}

TEST(GdiStretch, EqualSizesCopyExactlyAndNegativeExtentsMirror) {
  const Row source{Gray(1), Gray(2), Gray(3)};
  EXPECT_EQ(StretchRow(source, 3, HALFTONE), source);
  MemSurface src(3, 1), dst(3, 1);
  src.SetRow(0, source);
  // The source rectangle runs from x = 3 back to x = 0: a mirror image.
  ASSERT_TRUE(StretchBlt(dst.dc(), 0, 0, 3, 1, src.dc(), 3, 0, -3, 1, SRCCOPY));
  EXPECT_EQ(dst.Row(0, 3), (Row{Gray(3), Gray(2), Gray(1)}));
  MemSurface wide(6, 1);
  SetStretchBltMode(wide.dc(), COLORONCOLOR);
  ASSERT_TRUE(StretchBlt(wide.dc(), 6, 0, -6, 1, src.dc(), 0, 0, 3, 1, SRCCOPY));
  EXPECT_EQ(wide.Row(0, 6), (Row{Gray(3), Gray(3), Gray(2), Gray(2), Gray(1), Gray(1)}));
}

TEST(GdiStretch, SourceOutsideTheBitmapLeavesPixelsAlone) {
  MemSurface src(2, 1), dst(8, 1);
  src.SetRow(0, {Gray(9), Gray(9)});
  dst.Fill(Gray(5));
  SetStretchBltMode(dst.dc(), COLORONCOLOR);
  // Source rectangle (0..4) is twice the bitmap; only its left half can be read.
  ASSERT_TRUE(StretchBlt(dst.dc(), 0, 0, 8, 1, src.dc(), 0, 0, 4, 1, SRCCOPY));
  EXPECT_EQ(dst.Row(0, 8), (Row{Gray(9), Gray(9), Gray(9), Gray(9), Gray(5), Gray(5), Gray(5), Gray(5)}));
  EXPECT_FALSE(StretchBlt(dst.dc(), 0, 0, 0, 1, src.dc(), 0, 0, 2, 1, SRCCOPY));
}

TEST(GdiStretch, AbsurdExtentsDrawOnlyWhatCanBeRead) {
  MemSurface src(3, 3), dst(2, 2);
  src.Fill(Gray(9));
  dst.Fill(Gray(5));
  for (int mode : {HALFTONE, BLACKONWHITE, COLORONCOLOR}) {
    SetStretchBltMode(dst.dc(), mode);
    // Each destination pixel would cover far more than the source bitmap: nothing drawn.
    EXPECT_TRUE(StretchBlt(dst.dc(), 0, 0, 2, 2, src.dc(), 0, 0, INT32_MAX, INT32_MAX, SRCCOPY));
    EXPECT_EQ(dst.Row(0, 2), (Row{Gray(5), Gray(5)})) << mode;
    EXPECT_TRUE(StretchBlt(dst.dc(), 0, 0, INT32_MIN, -3, src.dc(), 0, 0, 3, 3, SRCCOPY));
  }
  // Enlarging into a huge rectangle touches only the destination bitmap.
  EXPECT_TRUE(StretchBlt(dst.dc(), 0, 0, INT32_MAX, INT32_MAX, src.dc(), 0, 0, 3, 3, SRCCOPY));
  EXPECT_EQ(dst.Row(1, 2), (Row{Gray(9), Gray(9)}));
}

// A source of one colour stored as such is stretched as a fill; stored row by row
// (the same pixels) it goes through the filters. Both must give the same bytes, for
// every filter and raster operation, shrinking, enlarging, mirrored and clipped, and
// a copy over a destination of one colour must leave its bands one colour.
TEST(GdiStretch, OneColourSourceGivesWhatItsPixelsGive) {
  constexpr int kW = 40, kH = 37;
  constexpr DWORD kPatternAndSource = 0x00C000CA;  // MERGECOPY: the brush in the result
  const COLORREF colour = RGB(12, 200, 77);
  MemSurface uniform(kW, kH), rowwise(kW, kH);
  uniform.Fill(colour);
  for (int y = 0; y < kH; ++y) rowwise.SetRow(y, Row(kW, colour));
  const RECT targets[] = {{3, 2, 93, 82}, {1, 1, 16, 12}, {70, 50, -10, -5}, {-20, -15, 130, 110}};
  std::mt19937 random(5);
  for (int mode : {HALFTONE, COLORONCOLOR, BLACKONWHITE, WHITEONBLACK}) {
    for (DWORD rop : {SRCCOPY, NOTSRCCOPY, SRCPAINT, SRCAND, kPatternAndSource}) {
      for (const RECT& to : targets) {
        MemSurface fromUniform(100, 90), fromRows(100, 90);
        for (int y = 0; y < 90; ++y) {
          Row noise(100);
          for (COLORREF& c : noise) c = random() & 0xFFFFFF;
          fromUniform.SetRow(y, noise);
          fromRows.SetRow(y, noise);
        }
        for (const MemSurface* dst : {&fromUniform, &fromRows}) {
          SetStretchBltMode(dst->dc(), mode);
          SelectObject(dst->dc(), GetStockObject(GRAY_BRUSH));
          const MemSurface& src = dst == &fromUniform ? uniform : rowwise;
          ASSERT_TRUE(StretchBlt(dst->dc(), to.left, to.top, to.right - to.left, to.bottom - to.top, src.dc(),
                                 2, 3, kW - 5, kH - 4, rop));
        }
        for (int y = 0; y < 90; ++y)
          ASSERT_EQ(fromUniform.Row(y, 100), fromRows.Row(y, 100)) << mode << " " << rop << " row " << y;
      }
    }
  }
  MemSurface layer(300, 200);
  layer.Fill(RGB(1, 2, 3));
  SetStretchBltMode(layer.dc(), HALFTONE);
  ASSERT_TRUE(StretchBlt(layer.dc(), 0, 0, 300, 200, uniform.dc(), 0, 0, kW, kH, SRCCOPY));
  const auto& raster = platform::gdi::Lookup<platform::gdi::BitmapObject>(layer.bitmap())->raster;
  for (int y = 0; y < 200; ++y) {
    std::uint32_t pixel = 0;
    ASSERT_TRUE(raster.RowIsUniform(y, &pixel)) << y;
    EXPECT_EQ(GetPixel(layer.dc(), 0, y), colour);
  }
}

TEST(GdiStretch, MonoSourceStretchesThroughTheColourRule) {
  MemSurface mono(2, 1, true), dst(4, 1);
  mono.SetRow(0, {kWhite, kBlack});
  SetBkColor(dst.dc(), RGB(0, 0, 200));
  SetTextColor(dst.dc(), RGB(200, 0, 0));
  SetStretchBltMode(dst.dc(), HALFTONE);  // samples: halftone needs colour on both sides
  ASSERT_TRUE(StretchBlt(dst.dc(), 0, 0, 4, 1, mono.dc(), 0, 0, 2, 1, SRCCOPY));
  EXPECT_EQ(dst.Row(0, 4), (Row{RGB(0, 0, 200), RGB(0, 0, 200), RGB(200, 0, 0), RGB(200, 0, 0)}));
}

// Enlarging written out plainly, one destination pixel at a time. HALFTONE: the
// destination pixel's centre lies at ((2j + 1) s - d) / 2d source pixels (held at the
// first and the last pixel), and the two source pixels around it are mixed in
// proportion, on both axes, rounded to nearest. COLORONCOLOR: the source pixel under
// the destination pixel's left (top) edge, j s / d.
struct Tap {
  int first;
  std::int64_t weight;  // of `first`, out of 2d; the rest goes to first + 1
};

Tap EnlargeTap(int j, int d, int s) {
  const std::int64_t pos = std::max<std::int64_t>(0, std::int64_t{2 * j + 1} * s - d);
  const int first = static_cast<int>(pos / (2 * d));
  if (first >= s - 1) return {s - 1, 2 * d};
  return {first, 2 * d - pos % (2 * d)};
}

COLORREF ReferenceEnlarge(const MemSurface& src, int sw, int sh, int dw, int dh, int x, int y, int mode) {
  if (mode == COLORONCOLOR) return GetPixel(src.dc(), x * sw / dw, y * sh / dh);
  const Tap tx = EnlargeTap(x, dw, sw);
  const Tap ty = EnlargeTap(y, dh, sh);
  const std::int64_t total = std::int64_t{4} * dw * dh;
  COLORREF result = 0;
  for (int shift : {0, 8, 16}) {
    std::int64_t sum = 0;
    for (int dy : {0, 1}) {
      for (int dx : {0, 1}) {
        const std::int64_t wx = dx == 0 ? tx.weight : 2 * dw - tx.weight;
        const std::int64_t wy = dy == 0 ? ty.weight : 2 * dh - ty.weight;
        if (wx == 0 || wy == 0) continue;
        sum += wx * wy * ((GetPixel(src.dc(), tx.first + dx, ty.first + dy) >> shift) & 0xFF);
      }
    }
    result |= static_cast<COLORREF>((sum + total / 2) / total) << shift;
  }
  return result;
}

TEST(GdiStretch, EnlargingAgreesWithThePlainReferenceOnRandomImages) {
  std::mt19937 random(11);
  for (int round = 0; round < 40; ++round) {
    const int sw = 1 + static_cast<int>(random() % 6);
    const int sh = 1 + static_cast<int>(random() % 6);
    const int dw = sw + 1 + static_cast<int>(random() % (3 * sw + 2));
    const int dh = sh + 1 + static_cast<int>(random() % (3 * sh + 2));
    MemSurface src(sw, sh), dst(dw, dh);
    for (int y = 0; y < sh; ++y) {
      for (int x = 0; x < sw; ++x) SetPixel(src.dc(), x, y, random() & 0xFFFFFF);
    }
    for (int mode : {HALFTONE, COLORONCOLOR}) {
      SetStretchBltMode(dst.dc(), mode);
      ASSERT_TRUE(StretchBlt(dst.dc(), 0, 0, dw, dh, src.dc(), 0, 0, sw, sh, SRCCOPY));
      for (int y = 0; y < dh; ++y) {
        for (int x = 0; x < dw; ++x) {
          ASSERT_EQ(GetPixel(dst.dc(), x, y), ReferenceEnlarge(src, sw, sh, dw, dh, x, y, mode))
              << sw << "x" << sh << " -> " << dw << "x" << dh << " mode " << mode << " at " << x << "," << y;
        }
      }
    }
  }
}

}  // namespace
