// The destructive effects: each fast routine against its plain reference on seeded
// random rectangles, strides and sizes (every byte of the buffer must agree, outside
// the rectangle too), and the references' rules on small hand-made buffers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
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

// The picture's pixels as 0x00RRGGBB words in the buffer's row order, as the image
// surface's mapped rows come.
struct Words {
  int width;
  std::vector<std::uint32_t> words;
  explicit Words(const Picture& p) : width(p.width) {
    for (int y = 0; y < p.height; ++y) {
      for (int x = 0; x < p.width; ++x)
        words.push_back(p.At(x, y, 0) | (p.At(x, y, 1) << 8) |
                        (static_cast<std::uint32_t>(p.At(x, y, 2)) << 16));
    }
  }
  PixelRows Rows(int x0, int y0, int x1, int y1) {
    PixelRows rows;
    rows.width = x1 - x0;
    rows.bytesPerPixel = 4;
    for (int y = y0; y < y1; ++y)
      rows.out.push_back(reinterpret_cast<BYTE*>(&words[static_cast<std::size_t>(y * width + x0)]));
    rows.in.assign(rows.out.begin(), rows.out.end());
    return rows;
  }
};

struct Span {
  int x0, y0, x1, y1;
};

// An effect on rows over `span`, three bytes a pixel in the buffer and four in words,
// against the plain reference on the buffer: every byte must agree, outside the span
// too, and every fourth byte stay 0.
void ExpectRowsMatchTheReference(const Picture& picture, Span span,
                                 const std::function<void(const PixelRows&)>& effect,
                                 const std::function<void(Picture&)>& plain, const std::string& what) {
  Picture expected = picture;
  plain(expected);
  Picture three = picture;
  effect(RowsOf(three.Rect(span.x0, span.y0, span.x1, span.y1)));
  ASSERT_EQ(three.bytes, expected.bytes) << what << ", three bytes a pixel";
  Words four(picture);
  effect(four.Rows(span.x0, span.y0, span.x1, span.y1));
  ASSERT_EQ(four.words, Words(expected).words) << what << ", four bytes a pixel";
}

TEST(EffectsDifferential, EachEffectOnRowsOfThreeOrFourBytesMatchesTheReference) {
  std::mt19937 random(13);
  for (int round = 0; round < 240; ++round) {
    Case c = RandomCase(random, round < 200 ? 40 : 140);
    // Rows long enough to be mirrored a chunk from each end at a time.
    if (round % 25 == 0) {
      c = Case{Picture(2000 + static_cast<int>(random() % 5000), 2, 3, random), 0, 0, 0, 2};
      c.x0 = static_cast<int>(random() % 5);
      c.x1 = c.picture.width - static_cast<int>(random() % 5);
    }
    const std::string what = "round " + std::to_string(round);
    const Span rect{c.x0, c.y0, c.x1, c.y1};
    const auto plainRect = [&](Picture& p) { return p.Rect(c.x0, c.y0, c.x1, c.y1); };
    ExpectRowsMatchTheReference(
        c.picture, rect, [](const PixelRows& rows) { MirrorRows(rows); },
        [&](Picture& p) { reference::MirrorRows(plainRect(p)); }, "mirror, " + what);
    // The flip's rows span the buffer's width, as the editor maps them; the
    // reference moves the padding too, which a surface's buffer holds as 0.
    Picture unpadded = c.picture;
    for (int y = 0; y < unpadded.height; ++y) {
      std::fill(unpadded.bytes.begin() + y * unpadded.stride + unpadded.width * 3,
                unpadded.bytes.begin() + (y + 1) * unpadded.stride, BYTE{0});
    }
    ExpectRowsMatchTheReference(
        unpadded, Span{0, c.y0, c.picture.width, c.y1}, [](const PixelRows& rows) { FlipRows(rows); },
        [&](Picture& p) { reference::FlipRows(plainRect(p)); }, "flip, " + what);
    // The buffer's own flip moves whole rows, padding and all.
    Picture flipped = c.picture, plainFlipped = c.picture;
    FlipRows(plainRect(flipped));
    reference::FlipRows(plainRect(plainFlipped));
    ASSERT_EQ(flipped.bytes, plainFlipped.bytes) << "flip of a buffer, " << what;
    ExpectRowsMatchTheReference(
        c.picture, rect, [](const PixelRows& rows) { EmbossPixels(rows); },
        [&](Picture& p) { reference::ConvolvePixels(plainRect(p), kEmbossKernel, 3, 1, kEmbossOffset); },
        "emboss, " + what);
    // Other kernels: small weights within 16-bit sums, large ones, divisors (negative
    // too), any odd size.
    const int n = round % 5 == 4 ? 1 + 2 * static_cast<int>(random() % 3) : 3;
    const int largest = round % 3 == 2 ? 100000 : 4;
    std::vector<int> kernel(static_cast<std::size_t>(n * n));
    for (int& w : kernel) w = std::uniform_int_distribution<int>(-largest, largest)(random);
    int divisor = round % 4 == 3 ? static_cast<int>(random() % 19) - 9 : 1;
    if (divisor == 0) divisor = -7;
    const int offset = static_cast<int>(random() % 512) - 128;
    ExpectRowsMatchTheReference(
        c.picture, rect, [&](const PixelRows& rows) { ConvolvePixels(rows, kernel, n, divisor, offset); },
        [&](Picture& p) { reference::ConvolvePixels(plainRect(p), kernel, n, divisor, offset); },
        "convolution, " + what);
    // Few distinct values as well as all of them.
    Picture few = c.picture;
    if (round % 2) {
      for (BYTE& b : few.bytes) b = static_cast<BYTE>(b & 0x31);
    }
    ExpectRowsMatchTheReference(
        few, rect, [](const PixelRows& rows) { EqualizePixels(rows); },
        [&](Picture& p) { reference::EqualizePixels(plainRect(p)); }, "equalise, " + what);

    // The line patterns: the image rectangle (top-down) over the buffer's rectangle,
    // sometimes reaching beyond the surface; their rows are its columns from the
    // surface's bottom row up to its top row.
    const int hs = c.picture.height;
    RECT image{c.x0, hs - c.y1, c.x1, hs - c.y0};
    if (round % 4 == 1) image.top -= 5;
    if (round % 4 == 2) image.bottom += 9;
    const Span lines{c.x0, 0, c.x1, hs - std::max(0, static_cast<int>(image.top))};
    ExpectRowsMatchTheReference(
        c.picture, lines, [](const PixelRows& rows) { DrawCheckLines(rows); },
        [&](Picture& p) { reference::DrawCheckLines(p.Whole(), image); }, "check lines, " + what);
    ExpectRowsMatchTheReference(
        c.picture, lines, [&](const PixelRows& rows) { DrawBlockGrooves(rows, image); },
        [&](Picture& p) { reference::DrawBlockGrooves(p.Whole(), image); }, "block grooves, " + what);
  }
}

// The destination rectangle sits inside a larger buffer whose other bytes must stay.
TEST(EffectsDifferential, RotationMatchesTheReferenceAndWritesOnlyItsRectangle) {
  std::mt19937 random(4);
  for (int round = 0; round < 200; ++round) {
    Case source = RandomCase(random, round < 150 ? 40 : 300);
    const int w = source.x1 - source.x0;
    const int h = source.y1 - source.y0;
    std::uniform_int_distribution<int> margin(0, 3);
    const int left = margin(random), bottom = margin(random);
    Picture fast(h + left + margin(random), w + bottom + margin(random), margin(random), random);
    Picture plain = fast;
    for (const int angle : {90, -90}) {
      RotateQuarter(source.Rect(), angle, fast.Rect(left, bottom, left + h, bottom + w));
      reference::RotateQuarter(source.Rect(), angle, plain.Rect(left, bottom, left + h, bottom + w));
      ASSERT_EQ(fast.bytes, plain.bytes) << "round " << round << " angle " << angle;
    }
    // A destination of the wrong shape is not written.
    if (w > 1) {
      RotateQuarter(source.Rect(), 90, fast.Rect(left, bottom, left + h, bottom + w - 1));
      ASSERT_EQ(fast.bytes, plain.bytes) << "round " << round;
    }
  }
}

// The buffer forms of the line patterns, the image rectangle anywhere, partly or
// wholly off the surface.
TEST(EffectsDifferential, LinePatternsOnBuffersMatchTheReference) {
  std::mt19937 random(14);
  for (int round = 0; round < 150; ++round) {
    Case fast = RandomCase(random, round < 100 ? 50 : 130);
    std::uniform_int_distribution<int> edge(-20, 150);
    const int a = edge(random), b = edge(random), t = edge(random), u = edge(random);
    const RECT image{std::min(a, b), std::min(t, u), std::max(a, b), std::max(t, u)};
    Case plain = fast;
    DrawCheckLines(fast.picture.Whole(), image);
    reference::DrawCheckLines(plain.picture.Whole(), image);
    ASSERT_EQ(fast.picture.bytes, plain.picture.bytes) << "check lines, round " << round;
    DrawBlockGrooves(fast.picture.Whole(), image);
    reference::DrawBlockGrooves(plain.picture.Whole(), image);
    ASSERT_EQ(fast.picture.bytes, plain.picture.bytes) << "block grooves, round " << round;
  }
}

TEST(EffectsTest, EmbossGives128OnUniformAreasAndLeansTowardsTheLowerLeft) {
  std::mt19937 random(9);
  Picture picture(5, 4, 1, random);
  picture.Fill(77);
  EmbossPixels(picture.Whole());
  ForEachPixel(picture.Whole(), [](BYTE* p, int x, int y) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(p[k], 128) << x << "," << y;
  });
  // One bright byte amid 0 (buffer row 1 is the middle row): the pixels above it and
  // to its right see it at their lower left (+1), the others at their upper right.
  Picture spot(3, 3, 3, random);
  spot.Fill(0);
  spot.bytes[static_cast<std::size_t>(spot.stride + 3)] = 100;  // byte 0 of pixel (1, 1)
  EmbossPixels(spot.Whole());
  const int expected[3][3] = {{28, 28, 128}, {28, 128, 228}, {128, 228, 228}};  // buffer rows bottom-up
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
  // Two values, half each: the darker maps to its own count times f, not to 0.
  Picture halves(2, 2, 2, random);
  ForEachPixel(halves.Whole(), [](BYTE* p, int x, int) { p[0] = p[1] = p[2] = x ? 200 : 10; });
  EqualizePixels(halves.Whole());
  EXPECT_EQ(halves.At(0, 0, 0), 127);
  EXPECT_EQ(halves.At(1, 1, 2), 255);
}

// A 25 x 45 surface with the image rectangle at (2, 3)-(24, 40): lines below the
// rectangle reach the bottom of the surface.
TEST(EffectsTest, CheckLinesEveryTenPixelsDownToTheBottomOfTheSurface) {
  constexpr int kW = 25, kH = 45;
  constexpr RECT kImage{2, 3, 24, 40};
  std::mt19937 random(11);
  const auto checked = [&](BYTE field) {
    Picture p(kW, kH, 1, random);
    p.Fill(field);
    DrawCheckLines(p.Whole(), kImage);
    return p;
  };
  const auto shown = [&](const Picture& p, int x, int y) { return p.At(x, kH - 1 - y, 0); };
  const Picture white = checked(255);
  EXPECT_TRUE(std::all_of(white.bytes.begin(), white.bytes.end(), [](BYTE b) { return b == 255; }));
  const Picture black = checked(0);
  for (int y = 0; y < kH; ++y) {
    for (int x = 0; x < kW; ++x) {
      // Rows 13, 23, 33 and 43 but for the columns L + 10k; columns from the top edge.
      const bool row = x >= 2 && x < 24 && (x - 2) % 10 != 0 && y > 3 && (y - 3) % 10 == 0;
      const bool column = y >= 3 && (x == 12 || x == 22);
      ASSERT_EQ(shown(black, x, y), (row || column) ? 51 : 0) << x << "," << y;
    }
  }
  const Picture grey = checked(100);  // trunc(100 * 0.8 + 51)
  EXPECT_EQ(shown(grey, 5, 13), 131);
  EXPECT_EQ(shown(grey, 12, 44), 131);
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
    // Rows 31 and 33 light, 32 the middle, the columns L + 30k keeping their outer
    // lines, the next groove 30 rows lower (below the image); columns 30 and 32 light,
    // 31 the middle, from the top edge to the bottom; buffer row 59 (r - B + 1 = 0)
    // only the middle line; where grooves cross, the horizontal middle line then the
    // vertical light one.
    const int crossed = static_cast<int>(static_cast<int>(field * 0.9 + 20.0) * 0.7 + 60.0);
    const struct {
      int x, y, value;
    } pixels[] = {{5, 31, light},   {5, 32, middle},  {5, 33, light}, {5, 62, middle}, {2, 31, field},
                  {2, 32, middle},  {5, 30, field},   {5, 34, field}, {30, 10, light}, {31, 10, middle},
                  {32, 10, light},  {31, 79, middle}, {31, 2, field}, {33, 10, field}, {30, 20, field},
                  {31, 20, middle}, {30, 32, crossed}};
    for (const auto& p : pixels) EXPECT_EQ(shown(p.x, p.y), p.value) << field << ": " << p.x << "," << p.y;
  }
}

}  // namespace
