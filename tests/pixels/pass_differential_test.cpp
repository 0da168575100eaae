// The optimised passes against their plain references (pixels/reference_passes.h) on
// seeded random pictures: odd widths, a single pixel, rectangles inside a larger
// buffer, every setting family. Bytes must agree exactly, inside and outside the
// rectangle, whether the passes work in place on a 24-bit buffer or go from one set of
// 32-bit rows to another. Step counts in the billions end quickly and land where the
// plain filter would after that many steps.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "pixels/adjust_colors.h"
#include "pixels/filters.h"
#include "pixels/pass_plan.h"
#include "pixels/reference_passes.h"
#include "platform/platform.h"

namespace {

struct Picture {
  int width, height, stride;
  std::vector<BYTE> bytes;
  Picture(int w, int h, std::mt19937& random) : width(w), height(h), stride((w * 3 + 3) & ~3) {
    bytes.resize(static_cast<std::size_t>(stride) * h);
    for (BYTE& b : bytes) b = static_cast<BYTE>(random());
  }
  PixelRect Rect(int x0, int y0, int x1, int y1) { return PixelRect{bytes.data(), x0, y0, x1, y1, stride}; }
};

struct Shape {
  int width, height;
  int x0, y0, x1, y1;  // the rectangle the passes work on
};

// Whole pictures of awkward sizes, and rectangles well inside larger ones.
const Shape kShapes[] = {{1, 1, 0, 0, 1, 1},        {7, 5, 0, 0, 7, 5}, {13, 9, 2, 3, 11, 8},
                         {33, 70, 1, 0, 32, 70},    {5, 1, 0, 0, 5, 1}, {1, 6, 0, 0, 1, 6},
                         {600, 520, 3, 5, 597, 519}};

AdjustmentSettings RandomColorSettings(std::mt19937& random) {
  AdjustmentSettings s;
  std::uniform_int_distribution<int> arg(0, 200);
  if (random() % 2) s.brightness = arg(random) - 100;
  if (random() % 2) s.contrast = arg(random) - 100;
  if (random() % 2) {
    s.redGamma = arg(random) * 0x1.97F62B6AE7D57p-6 + 0.004;
    s.blueGamma = arg(random) * 0x1.97F62B6AE7D57p-6 + 0.004;
  }
  if (random() % 2) s.hue = arg(random) * 1.8;
  if (random() % 2) s.saturation = arg(random) * 0.01;
  return s;
}

// The colour matrix adds four columns at once where the processor has AVX2; the
// portable way must give the same bytes.
TEST(PassDifferential, ColourPassMatchesTheReference) {
  for (const bool avx2 : {true, false}) {
    AllowAvx2(avx2);
    std::mt19937 random(7);
    for (const Shape& shape : kShapes) {
      for (int round = 0; round < 12; ++round) {
        const AdjustmentSettings settings = RandomColorSettings(random);
        Picture fast(shape.width, shape.height, random);
        Picture plain = fast;
        AdjustColors(fast.Rect(shape.x0, shape.y0, shape.x1, shape.y1), settings);
        reference::AdjustColors(plain.Rect(shape.x0, shape.y0, shape.x1, shape.y1), settings);
        ASSERT_EQ(fast.bytes, plain.bytes)
            << shape.width << "x" << shape.height << " round " << round << (avx2 ? "" : " portable");
      }
    }
  }
  AllowAvx2(true);
}

// A rectangle of a picture as a bitmap keeps it: 32-bit words 0x00RRGGBB, top row
// first, read from `source` and written to `target`, which starts as garbage (or as
// the same words, for a pass in place).
struct WordRows {
  int width, height;
  std::vector<std::uint32_t> source, target;
  WordRows(Picture& picture, const Shape& shape, bool inPlace)
      : width(shape.x1 - shape.x0), height(shape.y1 - shape.y0), source(Words(picture, shape)) {
    target = inPlace ? source : std::vector<std::uint32_t>(source.size(), 0xCDCDCDCDu);
  }
  PixelRows Rows(bool inPlace) {
    PixelRows rows;
    rows.width = width;
    rows.bytesPerPixel = 4;
    rows.inPlace = inPlace;
    for (int y = 0; y < height; ++y) {
      const std::size_t first = static_cast<std::size_t>(y) * width;
      rows.in.push_back(reinterpret_cast<const BYTE*>((inPlace ? target : source).data() + first));
      rows.out.push_back(reinterpret_cast<BYTE*>(target.data() + first));
    }
    return rows;
  }
  // The rectangle's pixels as words, its top row first.
  static std::vector<std::uint32_t> Words(Picture& picture, const Shape& shape) {
    std::vector<std::uint32_t> words;
    const PixelRect rect = picture.Rect(shape.x0, shape.y0, shape.x1, shape.y1);
    for (int y = rect.height() - 1; y >= 0; --y) {
      for (int x = 0; x < rect.width(); ++x) {
        const BYTE* p = rect.At(x, y);
        words.push_back(p[0] | (p[1] << 8) | (p[2] << 16));
      }
    }
    return words;
  }
};

TEST(PassDifferential, BothPassesGiveTheSameBytesOnBuffersAndOnBitmapRows) {
  std::mt19937 random(5);
  for (const Shape& shape : kShapes) {
    const bool small = shape.width * shape.height <= 10000;
    for (int round = 0; round < (small ? 8 : 2); ++round) {
      AdjustmentSettings settings = RandomColorSettings(random);
      std::uniform_int_distribution<int> steps(-1, small ? 3 : 1);
      settings.whitenSteps = steps(random);
      settings.sharpenSteps = steps(random);
      settings.smoothSteps = steps(random);
      settings.invert = random() % 2;
      settings.gray = random() % 4 == 0;
      PassPlan plan;
      plan.AddColors(settings);
      plan.AddFilters(settings);

      Picture original(shape.width, shape.height, random);
      Picture expected = original;
      reference::AdjustPixels(expected.Rect(shape.x0, shape.y0, shape.x1, shape.y1), settings);
      Picture buffer = original;
      plan.Run(buffer.Rect(shape.x0, shape.y0, shape.x1, shape.y1));
      ASSERT_EQ(buffer.bytes, expected.bytes) << shape.width << "x" << shape.height << " round " << round;
      // In place the colour matrix takes the portable way, from one set of rows to
      // another it adds with AVX2 where it can.
      for (const bool inPlace : {false, true}) {
        AllowAvx2(!inPlace);
        WordRows words(original, shape, inPlace);
        PixelRows rows = words.Rows(inPlace);
        plan.Run(rows);
        ASSERT_EQ(words.target, WordRows::Words(expected, shape))
            << shape.width << "x" << shape.height << " round " << round << (inPlace ? " in place" : "");
      }
      AllowAvx2(true);
    }
  }
}

using Filter = void (*)(const PixelRect&, int, const OutOfMemoryHandler&);
using PlainFilter = void (*)(const PixelRect&, int);
struct FilterPair {
  const char* name;
  Filter fast;
  PlainFilter plain;
};
const FilterPair kFilters[] = {{"whiten", WhitenPixels, reference::WhitenPixels},
                               {"sharpen", SharpenPixels, reference::SharpenPixels},
                               {"smooth", SmoothPixels, reference::SmoothPixels}};

TEST(PassDifferential, NeighbourhoodFiltersMatchTheReference) {
  std::mt19937 random(11);
  for (const FilterPair& filter : kFilters) {
    for (const Shape& shape : kShapes) {
      for (int steps : {-2, 0, 1, 2, 5}) {
        if (shape.width * shape.height > 10000 && steps > 2) continue;
        Picture fast(shape.width, shape.height, random);
        Picture plain = fast;
        filter.fast(fast.Rect(shape.x0, shape.y0, shape.x1, shape.y1), steps, {});
        filter.plain(plain.Rect(shape.x0, shape.y0, shape.x1, shape.y1), steps);
        ASSERT_EQ(fast.bytes, plain.bytes)
            << filter.name << " " << shape.width << "x" << shape.height << " steps " << steps;
      }
    }
  }
}

// The plain filter run step by step until its pixels repeat: the state after
// `steps` steps, worked out from where the cycle starts and how long it is.
std::vector<BYTE> PlainAfter(const FilterPair& filter, Picture picture, const Shape& shape, long long steps) {
  std::map<std::string, long long> seen;
  std::vector<std::vector<BYTE>> states;
  for (long long done = 0;; ++done) {
    if (done == steps) return picture.bytes;
    const auto [found, fresh] = seen.emplace(std::string(picture.bytes.begin(), picture.bytes.end()), done);
    if (!fresh) {
      const long long start = found->second;
      const long long cycle = done - start;
      return states[static_cast<std::size_t>(start + (steps - start) % cycle)];
    }
    states.push_back(picture.bytes);
    filter.plain(picture.Rect(shape.x0, shape.y0, shape.x1, shape.y1), 1);
  }
}

TEST(PassDifferential, HugeStepCountsSkipWholeCyclesAndEndWhereThePlainFilterWould) {
  std::mt19937 random(3);
  const Shape shapes[] = {{16, 8, 0, 0, 16, 8}, {5, 4, 1, 1, 4, 3}, {1, 1, 0, 0, 1, 1}};
  for (const FilterPair& filter : kFilters) {
    for (const Shape& shape : shapes) {
      for (long long steps : {3LL, 40LL, 1001LL, static_cast<long long>(INT_MAX)}) {
        Picture fast(shape.width, shape.height, random);
        const std::vector<BYTE> expected = PlainAfter(filter, fast, shape, steps);
        filter.fast(fast.Rect(shape.x0, shape.y0, shape.x1, shape.y1), static_cast<int>(steps), {});
        ASSERT_EQ(fast.bytes, expected)
            << filter.name << " " << shape.width << "x" << shape.height << " steps " << steps;
      }
    }
  }
}

}  // namespace
