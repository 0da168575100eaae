// Checks the pixel passes as the page's engine compiles them (with the WebAssembly
// vector code the native build never runs) against their plain references
// (pixels/reference_passes.h): seeded random pictures of awkward sizes, every colour
// setting family, gray and invert, the neighbourhood filters and the emboss, in place
// on 24-bit buffers and from one set of 32-bit rows to another. Prints "ok" or the
// first case whose bytes differ; tests/web/pass-check.test.mjs runs it in Node.
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "pixels/convolve.h"
#include "pixels/filters.h"
#include "pixels/pass_plan.h"
#include "pixels/reference_passes.h"

namespace {

struct Picture {
  int width, height, stride;
  std::vector<BYTE> bytes;
  Picture(int w, int h) : width(w), height(h), stride((w * 3 + 3) & ~3) {
    bytes.resize(static_cast<std::size_t>(stride) * static_cast<std::size_t>(h));
  }
  Picture(int w, int h, std::mt19937& random) : Picture(w, h) {
    for (BYTE& b : bytes) b = static_cast<BYTE>(random());
  }
  PixelRect Whole() { return PixelRect{bytes.data(), 0, 0, width, height, stride}; }
};

// Every 24-bit colour once, 4096 to a row.
Picture EveryColour() {
  Picture picture(4096, 4096);
  for (std::size_t row = 0; row < 4096; ++row) {
    for (std::size_t x = 0; x < 4096; ++x) {
      const std::size_t colour = row * 4096 + x;
      BYTE* p = &picture.bytes[row * static_cast<std::size_t>(picture.stride) + x * 3];
      p[0] = static_cast<BYTE>(colour);
      p[1] = static_cast<BYTE>(colour >> 8);
      p[2] = static_cast<BYTE>(colour >> 16);
    }
  }
  return picture;
}

// The picture's pixels as 32-bit rows (the fourth byte 0), top row first, as a
// bitmap keeps them.
std::vector<std::uint32_t> WordsOf(const Picture& picture) {
  std::vector<std::uint32_t> words;
  for (int y = picture.height - 1; y >= 0; --y) {
    const BYTE* p = &picture.bytes[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.stride)];
    for (int x = 0; x < picture.width; ++x, p += 3) words.push_back(p[0] | (p[1] << 8) | (p[2] << 16));
  }
  return words;
}

PixelRows RowsBetween(const std::vector<std::uint32_t>& from, std::vector<std::uint32_t>& to, int width) {
  PixelRows rows;
  rows.width = width;
  rows.bytesPerPixel = 4;
  rows.inPlace = false;
  for (std::size_t first = 0; first < to.size(); first += static_cast<std::size_t>(width)) {
    rows.in.push_back(reinterpret_cast<const BYTE*>(from.data() + first));
    rows.out.push_back(reinterpret_cast<BYTE*>(to.data() + first));
  }
  return rows;
}

AdjustmentSettings RandomColorSettings(std::mt19937& random) {
  AdjustmentSettings s;
  std::uniform_int_distribution<int> arg(0, 200);
  if (random() % 2) s.brightness = arg(random) - 100;
  if (random() % 2) s.contrast = arg(random) - 100;
  if (random() % 2) s.redGamma = arg(random) * 0x1.97F62B6AE7D57p-6 + 0.004;
  // Hue and saturation most of the time: they are the vector code's.
  if (random() % 4 != 0) s.hue = arg(random) * 1.8;
  if (random() % 4 != 0) s.saturation = arg(random) * 0.01;
  return s;
}

// Every case's name and whether the fast passes gave the plain bytes both ways.
bool CheckPasses(const Picture& original, const AdjustmentSettings& settings, std::string* failed) {
  const int width = original.width;
  PassPlan plan;
  plan.AddColors(settings);
  plan.AddFilters(settings);
  Picture expected = original;
  reference::AdjustPixels(expected.Whole(), settings);
  Picture buffer = original;
  plan.Run(buffer.Whole());
  if (buffer.bytes != expected.bytes) {
    *failed = "in place";
    return false;
  }
  const std::vector<std::uint32_t> source = WordsOf(original);
  std::vector<std::uint32_t> target(source.size(), 0xCDCDCDCDu);
  PixelRows rows = RowsBetween(source, target, width);
  plan.Run(rows);
  if (target != WordsOf(expected)) {
    *failed = "32-bit rows";
    return false;
  }
  return true;
}

bool CheckEmboss(std::mt19937& random, int width, int height) {
  Picture fast(width, height, random);
  Picture plain = fast;
  EmbossPixels(fast.Whole());
  reference::ConvolvePixels(plain.Whole(), kEmbossKernel, 3, 1, kEmbossOffset);
  return fast.bytes == plain.bytes;
}

}  // namespace

int main() {
  std::mt19937 random(17);
  // Widths around the vector code's 16-byte steps, and a picture large enough to be
  // split over threads where there are threads.
  const int sizes[][2] = {{1, 1},  {2, 3},  {5, 4},  {6, 7},    {15, 3},
                          {16, 5}, {17, 9}, {33, 8}, {101, 13}, {600, 520}};
  for (const auto& [width, height] : sizes) {
    const bool small = width * height <= 10000;
    for (int round = 0; round < (small ? 12 : 3); ++round) {
      AdjustmentSettings settings = RandomColorSettings(random);
      std::uniform_int_distribution<int> steps(0, small ? 3 : 1);
      settings.whitenSteps = steps(random);
      settings.sharpenSteps = steps(random);
      settings.smoothSteps = steps(random);
      settings.invert = random() % 2;
      settings.gray = random() % 3 == 0;
      std::string failed;
      if (!CheckPasses(Picture(width, height, random), settings, &failed)) {
        std::printf("%dx%d round %d: the passes differ, %s\n", width, height, round, failed.c_str());
        return 1;
      }
    }
    if (!CheckEmboss(random, width, height)) {
      std::printf("%dx%d: the emboss differs\n", width, height);
      return 1;
    }
  }
  // The colour matrix and the grey are first estimated in fixed point, and the
  // estimate must never decide a byte it cannot: every colour, through hues and
  // saturations (whose sums for grey pixels fall on whole numbers) and the grey.
  const Picture everyColour = EveryColour();
  AdjustmentSettings hue;
  hue.hue = 120.6;
  AdjustmentSettings saturation;
  saturation.saturation = 0.37;
  AdjustmentSettings both;
  both.hue = 333;
  both.saturation = 1.9;
  both.contrast = 40;
  AdjustmentSettings gray;
  gray.gray = true;
  // Weights too large for the estimate's fixed point: every pixel is summed whole.
  AdjustmentSettings vivid;
  vivid.saturation = 9;
  for (const AdjustmentSettings& settings : {hue, saturation, both, gray, vivid}) {
    std::string failed;
    if (!CheckPasses(everyColour, settings, &failed)) {
      std::printf("every colour, hue %g saturation %g gray %d: the passes differ, %s\n", settings.hue,
                  settings.saturation, settings.gray ? 1 : 0, failed.c_str());
      return 1;
    }
  }
  std::printf("ok\n");
  return 0;
}
