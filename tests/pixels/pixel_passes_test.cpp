// The colour and filter passes on small hand-made buffers: tables, truncations,
// kernels, edge replication and the rectangle they are confined to.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "pixels/adjust_colors.h"
#include "pixels/filters.h"
#include "pixels/pixel_buffer.h"

namespace {

using Bytes = std::array<BYTE, 3>;

// A 3 x 3 buffer with padded rows (stride 12), filled from nine pixels in buffer
// order (row 0 first).
struct Buffer3x3 {
  static constexpr int kStride = 12;
  std::vector<BYTE> bytes = std::vector<BYTE>(3 * kStride, 0xEE);

  explicit Buffer3x3(const std::vector<Bytes>& pixels) {
    for (int i = 0; i < 9; ++i) {
      for (int k = 0; k < 3; ++k)
        bytes[static_cast<size_t>(Offset(i) + k)] = pixels[static_cast<size_t>(i)][k];
    }
  }
  static int Offset(int i) { return (i / 3) * kStride + (i % 3) * 3; }
  PixelRect Rect(int x0, int y0, int x1, int y1) { return PixelRect{bytes.data(), x0, y0, x1, y1, kStride}; }
  PixelRect All() { return Rect(0, 0, 3, 3); }
  std::vector<Bytes> Pixels() const {
    std::vector<Bytes> out;
    for (int i = 0; i < 9; ++i) {
      const BYTE* p = bytes.data() + Offset(i);
      out.push_back(Bytes{p[0], p[1], p[2]});
    }
    return out;
  }
};

std::vector<Bytes> Uniform(Bytes value) { return std::vector<Bytes>(9, value); }
std::vector<Bytes> Single(Bytes centre, Bytes field) {
  std::vector<Bytes> pixels = Uniform(field);
  pixels[4] = centre;
  return pixels;
}

void AdjustWhole(Buffer3x3& b, int brightness, int contrast, double g0, double g1, double g2,
                 double saturation = 1.0, double hue = 0.0) {
  AdjustmentSettings settings;
  settings.brightness = brightness;
  settings.contrast = contrast;
  settings.redGamma = g0;
  settings.greenGamma = g1;
  settings.blueGamma = g2;
  settings.saturation = saturation;
  settings.hue = hue;
  AdjustColors(b.All(), settings);
}

TEST(AdjustColorsTest, TablesTruncateTowardZeroAndClamp) {
  struct Case {
    const char* what;
    int brightness;
    int contrast;
    double g0, g1, g2;
    Bytes in;
    Bytes out;
  };
  const Case cases[] = {
      // i + 25.5 and i - 25.5, truncated toward zero before clamping.
      {"brighter", 10, 0, 1.0, 1.0, 1.0, {0, 100, 240}, {25, 125, 255}},
      {"darker", -10, 0, 1.0, 1.0, 1.0, {30, 10, 255}, {4, 0, 229}},
      // trunc(1.5 i) + trunc(-63.75) and trunc(0.5 i) + trunc(63.75).
      {"more contrast", 0, 50, 1.0, 1.0, 1.0, {100, 101, 20}, {87, 88, 0}},
      {"less contrast", 0, -50, 1.0, 1.0, 1.0, {101, 0, 255}, {113, 63, 190}},
      // Once one gamma differs, all three tables apply; the 1.0 table lowers 33.
      {"gamma", 0, 0, 2.0, 1.0, 0.5, {128, 33, 64}, {64, 32, 127}},
      // Neutral everywhere: not even the 1.0 gamma tables run.
      {"neutral", 0, 0, 1.0, 1.0, 1.0, {33, 1, 254}, {33, 1, 254}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Buffer3x3 buffer(Uniform(c.in));
    AdjustWhole(buffer, c.brightness, c.contrast, c.g0, c.g1, c.g2);
    EXPECT_EQ(buffer.Pixels(), Uniform(c.out));
  }
}

TEST(AdjustColorsTest, ColourMatrixKeepsWeightedGreyAndSkipsAtNeutral) {
  // Saturation 0 gives the weighted grey 0.3086 b0 + 0.6094 b1 + 0.0820 b2.
  Buffer3x3 grey(Uniform({100, 50, 200}));
  AdjustWhole(grey, 0, 0, 1.0, 1.0, 1.0, 0.0, 0.0);
  EXPECT_EQ(grey.Pixels(), Uniform({77, 77, 77}));  // 30.86 + 30.47 + 16.40 = 77.73

  // A full turn (200 * 1.8 = 360 degrees, with pi as 3.1415) is close to, but not
  // exactly, the identity; grey stays grey within one.
  Buffer3x3 turned(Uniform({90, 90, 90}));
  AdjustWhole(turned, 0, 0, 1.0, 1.0, 1.0, 1.0, 360.0);
  for (const Bytes& p : turned.Pixels()) {
    for (BYTE v : p) EXPECT_NEAR(v, 90, 1);
  }
}

class FiltersTest : public ::testing::Test {
 protected:
  void TearDown() override { SetPixelBufferLimit(kDefaultPixelBufferLimit); }
};

TEST_F(FiltersTest, NeighbourhoodFiltersRepeatTheEdgePixels) {
  const Bytes z{0, 0, 0};
  struct Case {
    const char* what;
    void (*filter)(const PixelRect&, int, const OutOfMemoryHandler&);
    int steps;
    std::vector<Bytes> in;
    std::vector<Bytes> out;
  };
  const Case cases[] = {
      {"sharpen a spike", SharpenPixels, 1, Single({100, 100, 100}, z), Single({112, 112, 112}, z)},
      // At a corner the missing neighbours repeat it: (36 * 100 - 100 - 100) / 32.
      {"sharpen a corner",
       SharpenPixels,
       1,
       {{100, 0, 0}, z, z, z, z, z, z, z, z},
       {{106, 0, 0}, z, z, z, z, z, z, z, z}},
      // Each step reads the values before it: the second sees 112 and gives 36 * 112 / 32,
      // the neighbours -112 / 32, clamped to 0.
      {"sharpen twice", SharpenPixels, 2, Single({100, 100, 100}, z), Single({126, 126, 126}, z)},
      {"sharpen uniform", SharpenPixels, 3, Uniform({77, 0, 255}), Uniform({77, 0, 255})},
      {"smooth a spike", SmoothPixels, 1, Single({90, 0, 9}, z), Uniform({10, 0, 1})},
      {"smooth uniform", SmoothPixels, 2, Uniform({77, 1, 255}), Uniform({77, 1, 255})},
      // Two steps: 25 -> 255 - 230 * 230 / 255 = 48 -> 48 * 0.9 + 25.5 = 68.7.
      {"whiten twice", WhitenPixels, 2, Uniform({0, 0, 0}), Uniform({68, 68, 68})},
      {"whiten zero steps", WhitenPixels, 0, Uniform({0, 1, 2}), Uniform({0, 1, 2})},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Buffer3x3 buffer(c.in);
    c.filter(buffer.All(), c.steps, {});
    EXPECT_EQ(buffer.Pixels(), c.out);
  }
}

TEST_F(FiltersTest, InvertIsPerPixel) {
  Buffer3x3 inverted(Uniform({0, 1, 254}));
  InvertPixels(inverted.All());
  EXPECT_EQ(inverted.Pixels(), Uniform({255, 254, 1}));
}

TEST_F(FiltersTest, ApplyFiltersInvertsBeforeGraying) {
  // invert (1, 0, 0) -> (254, 255, 255), whose grey is 254.886.
  Buffer3x3 buffer(Uniform({1, 0, 0}));
  AdjustmentSettings settings;
  settings.invert = settings.gray = true;
  ApplyFilters(buffer.All(), settings);
  EXPECT_EQ(buffer.Pixels(), Uniform({254, 254, 254}));
}

TEST_F(FiltersTest, FiltersStayInsideTheRectangle) {
  // A rectangle of one pixel: its working copy repeats it, so sharpening leaves it,
  // and nothing outside changes.
  Buffer3x3 buffer(Single({100, 100, 100}, {0, 0, 0}));
  AdjustmentSettings settings;
  settings.whitenSteps = settings.sharpenSteps = settings.smoothSteps = 1;
  settings.invert = true;
  ApplyFilters(buffer.Rect(1, 1, 2, 2), settings);
  // whiten: 255 - 155 * 155 / 255 = 161 -> 161 * 0.9 + 25.5 = 170.4; invert -> 85.
  EXPECT_EQ(buffer.Pixels(), Single({85, 85, 85}, {0, 0, 0}));
}

TEST_F(FiltersTest, AWorkingCopyThatCannotBeHadSkipsTheFilterEvenAtZeroSteps) {
  // 5 x 5 pixels of 3 bytes are needed; 74 bytes are allowed.
  SetPixelBufferLimit(74);
  for (auto filter : {WhitenPixels, SharpenPixels, SmoothPixels}) {
    for (int steps : {0, 1}) {
      Buffer3x3 buffer(Single({100, 100, 100}, {0, 0, 0}));
      int reports = 0;
      filter(buffer.All(), steps, [&] { ++reports; });
      EXPECT_EQ(reports, 1);
      EXPECT_EQ(buffer.Pixels(), Single({100, 100, 100}, {0, 0, 0}));
    }
  }
  SetPixelBufferLimit(75);
  Buffer3x3 buffer(Single({100, 100, 100}, {0, 0, 0}));
  int reports = 0;
  SharpenPixels(buffer.All(), 1, [&] { ++reports; });
  EXPECT_EQ(reports, 0);
  EXPECT_EQ(buffer.Pixels()[4], (Bytes{112, 112, 112}));
}

}  // namespace
