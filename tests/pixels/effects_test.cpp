// The destructive effects on small hand-made buffers, with values worked out by hand,
// and each fast routine against its plain reference on seeded random rectangles,
// strides and sizes: every byte of the buffers, inside the rectangle and out, must
// agree.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "pixels/convolve.h"
#include "pixels/equalize.h"
#include "pixels/line_patterns.h"
#include "pixels/mirror.h"
#include "pixels/pixel_buffer.h"
#include "pixels/reference_passes.h"
#include "pixels/rotate.h"

namespace {

// A buffer of width x height pixels whose rows are `padding` bytes longer than they
// need be, filled with random bytes (padding included).
struct Picture {
  int width, height, stride;
  std::vector<BYTE> bytes;
  Picture(int w, int h, int padding, std::mt19937& random) : width(w), height(h), stride(w * 3 + padding) {
    bytes.resize(static_cast<std::size_t>(stride) * static_cast<std::size_t>(h));
    for (BYTE& b : bytes) b = static_cast<BYTE>(random());
  }
  PixelRect Rect(int x0, int y0, int x1, int y1) { return PixelRect{bytes.data(), x0, y0, x1, y1, stride}; }
  PixelRect Whole() { return Rect(0, 0, width, height); }
  BYTE At(int x, int y, int k) const { return bytes[static_cast<std::size_t>(y * stride + x * 3 + k)]; }
  void Fill(BYTE value) { std::fill(bytes.begin(), bytes.end(), value); }
};

// A random rectangle of a random picture: sizes from a single pixel up, odd and even,
// padded rows from none to seven bytes.
struct Case {
  Picture picture;
  int x0, y0, x1, y1;
  PixelRect Rect() { return picture.Rect(x0, y0, x1, y1); }
};

Case RandomCase(std::mt19937& random, int largest) {
  std::uniform_int_distribution<int> size(1, largest);
  std::uniform_int_distribution<int> padding(0, 7);
  Picture picture(size(random), size(random), padding(random), random);
  std::uniform_int_distribution<int> x(0, picture.width - 1), y(0, picture.height - 1);
  const int xa = x(random), xb = x(random), ya = y(random), yb = y(random);
  return Case{picture, std::min(xa, xb), std::min(ya, yb), std::max(xa, xb) + 1, std::max(ya, yb) + 1};
}

TEST(EffectsDifferential, MirrorAndFlipMatchTheReference) {
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    Case fast = RandomCase(random, round < 250 ? 40 : 300);
    // Rows long enough to be mirrored a chunk from each end at a time.
    if (round % 25 == 0) {
      std::uniform_int_distribution<int> width(2000, 7000);
      fast = Case{Picture(width(random), 2, 3, random), 0, 0, 0, 2};
      fast.x0 = static_cast<int>(random() % 5);
      fast.x1 = fast.picture.width - static_cast<int>(random() % 5);
    }
    Case plain = fast;
    MirrorRows(fast.Rect());
    reference::MirrorRows(plain.Rect());
    ASSERT_EQ(fast.picture.bytes, plain.picture.bytes) << "mirror, round " << round;
    FlipRows(fast.Rect());
    reference::FlipRows(plain.Rect());
    ASSERT_EQ(fast.picture.bytes, plain.picture.bytes) << "flip, round " << round;
  }
}

TEST(EffectsDifferential, RotationMatchesTheReferenceAndWritesOnlyItsRectangle) {
  std::mt19937 random(4);
  for (int round = 0; round < 200; ++round) {
    Case source = RandomCase(random, round < 150 ? 40 : 300);
    const int w = source.x1 - source.x0;
    const int h = source.y1 - source.y0;
    // The destination rectangle sits inside a larger buffer whose other bytes must
    // stay as they were.
    std::uniform_int_distribution<int> margin(0, 3);
    const int left = margin(random), bottom = margin(random);
    Picture fast(h + left + margin(random), w + bottom + margin(random), margin(random), random);
    Picture plain = fast;
    for (const int angle : {90, -90}) {
      RotateQuarter(source.Rect(), angle, fast.Rect(left, bottom, left + h, bottom + w));
      reference::RotateQuarter(source.Rect(), angle, plain.Rect(left, bottom, left + h, bottom + w));
      ASSERT_EQ(fast.bytes, plain.bytes) << "round " << round << " angle " << angle;
    }
  }
}

TEST(EffectsDifferential, ConvolutionMatchesTheReferenceForAnyKernel) {
  std::mt19937 random(5);
  for (int round = 0; round < 300; ++round) {
    Case fast = RandomCase(random, round < 250 ? 30 : 200);
    Case plain = fast;
    // Mostly 3 x 3 kernels within 16 bits with no divisor, the emboss's kind; then
    // large weights, divisors (negative too) and other sizes.
    const int n = round % 5 == 4 ? 1 + 2 * static_cast<int>(random() % 3) : 3;
    const bool large = round % 3 == 2;
    std::uniform_int_distribution<int> weight(large ? -100000 : -3, large ? 100000 : 3);
    std::vector<int> kernel(static_cast<std::size_t>(n * n));
    for (int& w : kernel) w = weight(random);
    const int divisor = round % 4 == 3 ? static_cast<int>(random() % 19) - 9 : 1;
    if (divisor == 0) continue;
    const int offset = static_cast<int>(random() % 512) - 128;
    ConvolvePixels(fast.Rect(), kernel, n, divisor, offset);
    reference::ConvolvePixels(plain.Rect(), kernel, n, divisor, offset);
    ASSERT_EQ(fast.picture.bytes, plain.picture.bytes) << "round " << round << " n " << n;
  }
}

TEST(EffectsDifferential, EqualisationMatchesTheReference) {
  std::mt19937 random(6);
  for (int round = 0; round < 200; ++round) {
    Case fast = RandomCase(random, round < 150 ? 40 : 300);
    // Few distinct values as well as all of them.
    if (round % 2) {
      for (BYTE& b : fast.picture.bytes) b = static_cast<BYTE>(b & 0x31);
    }
    Case plain = fast;
    EqualizePixels(fast.Rect());
    reference::EqualizePixels(plain.Rect());
    ASSERT_EQ(fast.picture.bytes, plain.picture.bytes) << "round " << round;
  }
}

// A 3 x 2 picture turned a quarter counter-clockwise: its top row a, b, c becomes the
// left column with c at the top. Buffer rows run bottom-up, so the top row is buffer
// row 1; the turned picture's top row is its buffer row 2.
TEST(EffectsTest, AQuarterTurnCounterClockwiseAndBack) {
  std::mt19937 random(1);
  Picture source(3, 2, 3, random);
  Picture turned(2, 3, 2, random);
  RotateQuarter(source.Whole(), 90, turned.Whole());
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(turned.At(0, 2, k), source.At(2, 1, k));  // c at the top left
    EXPECT_EQ(turned.At(0, 1, k), source.At(1, 1, k));  // b
    EXPECT_EQ(turned.At(0, 0, k), source.At(0, 1, k));  // a at the bottom left
    EXPECT_EQ(turned.At(1, 2, k), source.At(2, 0, k));  // the bottom row on the right
  }
  Picture back(3, 2, 3, random);
  RotateQuarter(turned.Whole(), -90, back.Whole());
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) {
      for (int k = 0; k < 3; ++k) EXPECT_EQ(back.At(x, y, k), source.At(x, y, k));
    }
  }
  // A destination of the wrong shape is not written.
  const std::vector<BYTE> before = back.bytes;
  RotateQuarter(source.Whole(), 90, back.Whole());
  EXPECT_EQ(back.bytes, before);
}

TEST(EffectsTest, FlipMovesWholeRowsAndKeepsTheMiddleRowOfAnOddHeight) {
  std::mt19937 random(2);
  Picture picture(4, 7, 4, random);
  const Picture before = picture;
  // Rows 1..5 of the buffer, whatever the rectangle's columns.
  FlipRows(picture.Rect(2, 1, 3, 6));
  for (int y = 0; y < 7; ++y) {
    const int from = (y >= 1 && y < 6) ? 6 - y : y;
    for (int i = 0; i < picture.stride; ++i)
      ASSERT_EQ(picture.bytes[static_cast<std::size_t>(y * picture.stride + i)],
                before.bytes[static_cast<std::size_t>(from * picture.stride + i)])
          << y;
  }
  FlipRows(picture.Rect(2, 1, 3, 6));
  EXPECT_EQ(picture.bytes, before.bytes);
}

TEST(EffectsTest, AFlipOrEmbossWithoutItsMemoryReportsItAndChangesNothing) {
  std::mt19937 random(8);
  Picture picture(6, 5, 2, random);
  const std::vector<BYTE> before = picture.bytes;
  int reports = 0;
  // Below one row of the buffer: the flip's row cannot be had.
  SetPixelBufferLimit(static_cast<std::size_t>(picture.stride) - 1);
  FlipRows(picture.Whole(), [&] { ++reports; });
  EXPECT_EQ(reports, 1);
  // The emboss asks for its whole working copy, 8 x 7 pixels, even though it keeps
  // only three rows of it.
  SetPixelBufferLimit(8 * 7 * 3 - 1);
  EmbossPixels(picture.Whole(), [&] { ++reports; });
  EXPECT_EQ(reports, 2);
  EXPECT_EQ(picture.bytes, before);
  SetPixelBufferLimit(8 * 7 * 3);
  EmbossPixels(picture.Whole(), [&] { ++reports; });
  EXPECT_EQ(reports, 2);
  EXPECT_NE(picture.bytes, before);
  SetPixelBufferLimit(kDefaultPixelBufferLimit);
}

TEST(EffectsTest, EmbossGives128OnUniformAreasAndLeansTowardsTheLowerLeft) {
  std::mt19937 random(9);
  Picture picture(5, 4, 1, random);
  picture.Fill(77);
  EmbossPixels(picture.Whole());
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 5; ++x) {
      for (int k = 0; k < 3; ++k) ASSERT_EQ(picture.At(x, y, k), 128) << x << "," << y;
    }
  }
  // One bright byte in the middle of a 3 x 3 field of 0 (buffer row 1 is the middle
  // row): the pixels above it and to its right see it at their lower left (+1), those
  // below it and to its left at their upper right (-1).
  Picture spot(3, 3, 3, random);
  spot.Fill(0);
  spot.bytes[static_cast<std::size_t>(spot.stride + 3)] = 100;  // byte 0 of pixel (1, 1)
  EmbossPixels(spot.Whole());
  const int expected[3][3] = {// buffer rows 0 (screen bottom) to 2 (top), columns 0..2
                              {28, 28, 128},
                              {28, 128, 228},
                              {128, 228, 228}};
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 3; ++x) {
      EXPECT_EQ(spot.At(x, y, 0), expected[y][x]) << x << "," << y;
      EXPECT_EQ(spot.At(x, y, 1), 128);
    }
  }
}

TEST(EffectsTest, EqualisingOneValueGivesTruncatedNTimesF) {
  std::mt19937 random(10);
  for (const auto& [side, value] : {std::pair{10, 254}, std::pair{8, 255}}) {
    Picture picture(side + 2, side + 1, 3, random);
    const std::vector<BYTE> before = picture.bytes;
    const PixelRect rect = picture.Rect(1, 1, side + 1, side + 1);
    ForEachPixel(rect, [](BYTE* p, int, int) { p[0] = p[1] = p[2] = 40; });
    EqualizePixels(rect);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const bool inside = x >= 1 && x <= side && y >= 1 && y <= side;
        for (int k = 0; k < 3; ++k) {
          const BYTE outside = before[static_cast<std::size_t>(y * picture.stride + x * 3 + k)];
          ASSERT_EQ(picture.At(x, y, k), inside ? value : outside) << side << ": " << x << "," << y;
        }
      }
    }
  }
  // Two values, each in half of a 2 x 2 rectangle: the darker maps to its own count
  // times f, 2 * 63.75, not to 0.
  Picture halves(2, 2, 2, random);
  ForEachPixel(halves.Whole(), [](BYTE* p, int x, int) { p[0] = p[1] = p[2] = x ? 200 : 10; });
  EqualizePixels(halves.Whole());
  EXPECT_EQ(halves.At(0, 0, 0), 127);
  EXPECT_EQ(halves.At(1, 1, 2), 255);
}

// A surface of 25 x 45 pixels with the image rectangle at left 2, top 3, right 24,
// bottom 40: lines below the rectangle reach the bottom of the surface.
constexpr int kSurfaceW = 25, kSurfaceH = 45;
constexpr RECT kImage{2, 3, 24, 40};

// The byte at surface point (x, y), y counted top-down.
BYTE Shown(const Picture& p, int x, int y) { return p.At(x, kSurfaceH - 1 - y, 0); }

TEST(EffectsTest, CheckLinesEveryTenPixelsDownToTheBottomOfTheSurface) {
  std::mt19937 random(11);
  Picture white(kSurfaceW, kSurfaceH, 1, random);
  white.Fill(255);
  const std::vector<BYTE> whiteBefore = white.bytes;
  DrawCheckLines(white.Whole(), kImage);
  EXPECT_EQ(white.bytes, whiteBefore);

  Picture black(kSurfaceW, kSurfaceH, 1, random);
  black.Fill(0);
  DrawCheckLines(black.Whole(), kImage);
  for (int y = 0; y < kSurfaceH; ++y) {
    for (int x = 0; x < kSurfaceW; ++x) {
      const bool columns = x >= 2 && x < 24;
      // Rows 13, 23, 33 and 43, leaving out the columns L + 10k.
      const bool row = columns && (x - 2) % 10 != 0 && y > 3 && (y - 3) % 10 == 0;
      // From the top edge down.
      const bool column = y >= 3 && (x == 12 || x == 22);
      ASSERT_EQ(Shown(black, x, y), (row || column) ? 51 : 0) << x << "," << y;
    }
  }
  // Grey 100 becomes trunc(100 * 0.8 + 51) = 131.
  Picture grey(kSurfaceW, kSurfaceH, 1, random);
  grey.Fill(100);
  DrawCheckLines(grey.Whole(), kImage);
  EXPECT_EQ(Shown(grey, 5, 13), 131);
  EXPECT_EQ(Shown(grey, 12, 44), 131);
}

TEST(EffectsTest, BlockGroovesEveryThirtyPixels) {
  std::mt19937 random(12);
  const RECT image{2, 3, 70, 60};
  constexpr int kW = 72, kH = 80;
  for (const auto& [field, light, middle] : {std::tuple{0, 60, 20}, std::tuple{255, 238, 249}}) {
    Picture surface(kW, kH, 2, random);
    surface.Fill(static_cast<BYTE>(field));
    DrawBlockGrooves(surface.Whole(), image);
    const auto shown = [&](int x, int y) { return surface.At(x, kH - 1 - y, 1); };
    // A horizontal groove: surface rows 31 and 33 light, 32 the middle, the columns
    // L + 30k keeping their outer lines; the second groove 30 rows lower, below the
    // rectangle.
    EXPECT_EQ(shown(5, 31), light);
    EXPECT_EQ(shown(5, 32), middle);
    EXPECT_EQ(shown(5, 33), light);
    EXPECT_EQ(shown(5, 62), middle);
    EXPECT_EQ(shown(2, 31), field);
    EXPECT_EQ(shown(2, 32), middle);
    EXPECT_EQ(shown(5, 30), field);
    EXPECT_EQ(shown(5, 34), field);
    // A vertical groove: columns 30 and 32 light, 31 the middle, from the top edge
    // (not above it) to the bottom of the surface.
    EXPECT_EQ(shown(30, 10), light);
    EXPECT_EQ(shown(31, 10), middle);
    EXPECT_EQ(shown(32, 10), light);
    EXPECT_EQ(shown(31, 79), middle);
    EXPECT_EQ(shown(31, 2), field);
    EXPECT_EQ(shown(33, 10), field);
    // Buffer row 59 (surface row 20) has r - B + 1 = 0: only the middle line there.
    EXPECT_EQ(shown(30, kH - 1 - 59), field);
    EXPECT_EQ(shown(31, kH - 1 - 59), middle);
    // Where the grooves cross, both transforms in turn: the middle line of the
    // horizontal groove, then the light one of the vertical.
    const int twice = static_cast<int>(static_cast<int>(field * 0.9 + 20.0) * 0.7 + 60.0);
    EXPECT_EQ(shown(30, 32), twice);
  }
}

}  // namespace
