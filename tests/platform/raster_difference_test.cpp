// Packed rows, masked rows and the differences built on them: packing must give back
// every pixel of rows with repeats of every length (those of one and two pixels stay
// literal), at either end of a row and across rows; masked rows must change exactly
// the pixels they hold, at the edges of the mask's words and of odd widths; a
// difference between two rasters, whatever their storage (shared, packed, one colour,
// rows of their own) and whatever shape the change has (a stroke or a spray), must
// turn either into the other, and two differences combined must do what both do in
// turn.
#include "platform/raster_difference.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "platform/masked_rows.h"
#include "platform/packed_rows.h"
#include "platform/raster.h"

namespace {

using platform::raster::Difference;
using platform::raster::MaskedRows;
using platform::raster::PackedRows;
using platform::raster::Raster;

// Rows that mix repeats of 1 to 9 pixels with noise, as strokes on a key colour do.
std::vector<std::uint32_t> StrokeLikeRows(std::mt19937& random, int width, int rows) {
  std::vector<std::uint32_t> pixels;
  for (int r = 0; r < rows; ++r) {
    int x = 0;
    while (x < width) {
      const int length = std::min(width - x, 1 + static_cast<int>(random() % 9));
      const std::uint32_t value = random() % 4 == 0 ? random() & 0xFFFFFF : 0xFF00FF;
      const bool noisy = random() % 5 == 0;
      for (int i = 0; i < length; ++i) pixels.push_back(noisy ? random() & 0xFFFFFF : value);
      x += length;
    }
  }
  return pixels;
}

TEST(PackedRows, GiveBackEveryPixelAndXorLikeTheRows) {
  std::mt19937 random(11);
  for (const int width : {1, 2, 3, 5, 8, 9, 17, 64, 301}) {
    SCOPED_TRACE(width);
    const int rows = 1 + static_cast<int>(random() % 16);
    const std::vector<std::uint32_t> a = StrokeLikeRows(random, width, rows);
    const std::vector<std::uint32_t> b = StrokeLikeRows(random, width, rows);
    const auto step = static_cast<std::size_t>(width);

    const PackedRows packed(a.data(), step, width, rows);
    std::vector<std::uint32_t> out(a.size(), 0xDEAD);
    packed.Unpack(out.data(), step);
    EXPECT_EQ(out, a);
    EXPECT_EQ(packed.AllZero(), std::all_of(a.begin(), a.end(), [](std::uint32_t p) { return p == 0; }));

    // Into rows further apart than the width: the gaps stay as they were.
    std::vector<std::uint32_t> wide(static_cast<std::size_t>(width + 3) * rows, 7);
    packed.Unpack(wide.data(), step + 3);
    for (int r = 0; r < rows; ++r) {
      for (int x = 0; x < width + 3; ++x) {
        const std::uint32_t expected = x < width ? a[static_cast<std::size_t>(r) * step + x] : 7;
        ASSERT_EQ(wide[static_cast<std::size_t>(r) * (step + 3) + x], expected) << r << "," << x;
      }
    }

    // Exclusive or of the packed forms, without unpacking, gives the same pixels.
    const PackedRows packedB(b.data(), step, width, rows);
    std::vector<std::uint32_t> expected(a.size()), viaRuns(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) expected[i] = a[i] ^ b[i];
    PackedRows::Xor(packed, packedB)->Unpack(viaRuns.data(), step);
    EXPECT_EQ(viaRuns, expected);
    EXPECT_TRUE(PackedRows::Xor(packed, packed)->AllZero());

    const PackedRows difference(expected.data(), step, width, rows);
    std::vector<std::uint32_t> turned = a;
    difference.XorInto(turned.data(), step);
    EXPECT_EQ(turned, b);
    difference.XorInto(turned.data(), step);
    EXPECT_EQ(turned, a);
    const std::vector<std::uint32_t> zeros(a.size(), 0);
    EXPECT_TRUE(PackedRows(zeros.data(), step, width, rows).AllZero());
    EXPECT_EQ(difference.AllZero(), a == b);
  }
}

TEST(PackedRows, KeyColouredRowsPackToAFewWordsAndNoiseDoesNotGrowMuch) {
  const int width = 4000;
  std::vector<std::uint32_t> row(width, 0xFF00FF);
  for (int x = 1000; x < 1003; ++x) row[static_cast<std::size_t>(x)] = 0x0000FF;
  const PackedRows stroke(row.data(), width, width, 1);
  // A repeat, three literals and a repeat, and where the row starts.
  EXPECT_LE(stroke.bytes(), 7u * sizeof(std::uint32_t));

  std::mt19937 random(3);
  for (auto& pixel : row) pixel = random() & 0xFFFFFF;
  const PackedRows noise(row.data(), width, width, 1);
  EXPECT_LE(noise.bytes(), (width + 8) * sizeof(std::uint32_t));
}

// Rows of zeros with the pixels `set` chooses at `value` (or at random values when
// `value` is 0).
template <typename Set>
std::vector<std::uint32_t> Dotted(std::mt19937& random, int width, int rows, std::uint32_t value, Set set) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * rows, 0);
  for (int r = 0; r < rows; ++r) {
    for (int x = 0; x < width; ++x) {
      if (set(x, r))
        pixels[static_cast<std::size_t>(r) * width + x] = value ? value : 1 + random() % 0xFFFFFF;
    }
  }
  return pixels;
}

TEST(MaskedRows, ChangeExactlyThePixelsTheyHold) {
  std::mt19937 random(5);
  for (const int width : {1, 7, 63, 64, 65, 128, 130, 301}) {
    SCOPED_TRACE(width);
    const int rows = 1 + static_cast<int>(random() % 16);
    const auto everyWay = {
        Dotted(random, width, rows, 0x00FF00, [](int, int) { return false; }),
        Dotted(random, width, rows, 0x00FF00, [](int x, int r) { return x == 0 && r == 0; }),
        Dotted(random, width, rows, 0x00FF00, [&](int x, int) { return x == width - 1; }),
        Dotted(random, width, rows, 0x00FF00, [](int, int) { return true; }),
        Dotted(random, width, rows, 0x00FF00, [&](int, int) { return random() % 5 == 0; }),
        Dotted(random, width, rows, 0, [&](int x, int) { return x % 64 == 63 || random() % 3 == 0; }),
    };
    for (const std::vector<std::uint32_t>& change : everyWay) {
      const MaskedRows masked(change.data(), static_cast<std::size_t>(width), width, rows);
      EXPECT_EQ(masked.AllZero(), std::all_of(change.begin(), change.end(), [](auto p) { return p == 0; }));
      // Into rows further apart than the width: the gaps stay as they were.
      const int step = width + 5;
      std::vector<std::uint32_t> before(static_cast<std::size_t>(step) * rows);
      for (auto& pixel : before) pixel = random() & 0xFFFFFF;
      std::vector<std::uint32_t> turned = before;
      masked.XorInto(turned.data(), static_cast<std::size_t>(step));
      for (int r = 0; r < rows; ++r) {
        for (int x = 0; x < step; ++x) {
          const std::size_t at = static_cast<std::size_t>(r) * step + x;
          const std::uint32_t expected =
              x < width ? before[at] ^ change[static_cast<std::size_t>(r) * width + x] : before[at];
          ASSERT_EQ(turned[at], expected) << r << "," << x;
        }
      }
      masked.XorInto(turned.data(), static_cast<std::size_t>(step));
      EXPECT_EQ(turned, before);
    }
  }
}

// Masked against a background that is not 0 (a layer's key colour), and changed by
// masked differences without unpacking: whatever the two masks hold in each word.
TEST(MaskedRows, KeepAnyBackgroundAndTakeAMaskedChange) {
  std::mt19937 random(21);
  for (const int width : {1, 63, 64, 65, 200}) {
    SCOPED_TRACE(width);
    const int rows = 1 + static_cast<int>(random() % 16);
    const auto step = static_cast<std::size_t>(width);
    const std::uint32_t key = 0xFF00FF;
    std::vector<std::uint32_t> layer =
        Dotted(random, width, rows, 0x0000FF, [&](int, int) { return random() % 3 == 0; });
    for (auto& pixel : layer) pixel = pixel ? pixel : key;
    EXPECT_EQ(MaskedRows::MostPixels(layer.data(), width), width < 3 ? layer[0] : key);
    const MaskedRows kept(layer.data(), step, width, rows, key);
    std::vector<std::uint32_t> out(layer.size(), 7);
    kept.Unpack(out.data(), step);
    EXPECT_EQ(out, layer);
    EXPECT_FALSE(kept.AllZero());

    for (int round = 0; round < 5; ++round) {
      // Some changes turn pixels into the key, some the key into dots, some none; the
      // last one also has a row of one change, which packs as a run.
      std::vector<std::uint32_t> change =
          Dotted(random, width, rows, 0, [&](int, int) { return random() % (2 + round) == 0; });
      if (round == 4) std::fill_n(change.begin(), width, 0x00FF00);
      std::vector<std::uint32_t> expected = layer;
      for (std::size_t i = 0; i < expected.size(); ++i) expected[i] ^= change[i];
      const MaskedRows masked(change.data(), step, width, rows);
      const auto changed = MaskedRows::Xor(kept, masked);
      changed->Unpack(out.data(), step);
      EXPECT_EQ(out, expected);
      // The same change as runs, masked piece by piece.
      MaskedRows::Xor(kept, PackedRows(change.data(), step, width, rows))->Unpack(out.data(), step);
      EXPECT_EQ(out, expected);
      // Undone, it is the kept rows again.
      const auto back = MaskedRows::Xor(*changed, masked);
      back->Unpack(out.data(), step);
      EXPECT_EQ(out, layer);
      EXPECT_EQ(back->bytes(), kept.bytes());
    }

    // Sprays of the dots' colour and their undoing, word by word: once the dots are
    // most pixels the mask turns over, and every pixel still reads right.
    std::shared_ptr<const MaskedRows> sprayed =
        std::make_shared<const MaskedRows>(layer.data(), step, width, rows, key);
    std::vector<std::uint32_t> expected = layer;
    for (int round = 0; round < 6; ++round) {
      std::vector<std::uint32_t> change(layer.size(), 0);
      for (std::size_t i = 0; i < change.size(); ++i) {
        const bool dotted = expected[i] != key;
        if (random() % 3 == 0 && (round < 4 ? !dotted : dotted)) change[i] = key ^ 0x0000FF;
      }
      for (std::size_t i = 0; i < expected.size(); ++i) expected[i] ^= change[i];
      if (std::all_of(change.begin(), change.end(), [](std::uint32_t p) { return p == 0; })) continue;
      sprayed = MaskedRows::Xor(*sprayed, MaskedRows(change.data(), step, width, rows));
      sprayed->Unpack(out.data(), step);
      ASSERT_EQ(out, expected) << round;
      EXPECT_TRUE(sprayed->MostlyBackground());
    }
  }
}

TEST(MaskedRows, ASprayOfOneColourCostsItsMaskAndAFewWords) {
  std::mt19937 random(8);
  const int width = 4000;
  const std::vector<std::uint32_t> spray =
      Dotted(random, width, 16, 0xFF00FF ^ 0x0000FF, [&](int, int) { return random() % 5 == 0; });
  const MaskedRows masked(spray.data(), width, width, 16);
  EXPECT_LE(masked.bytes(), MaskedRows::MaskBytes(width, 16) + 8 * sizeof(std::uint32_t));
  EXPECT_EQ(MaskedRows::MaskBytes(width, 16), 63u * 16 * sizeof(std::uint64_t));
}

// Rasters whose bands are stored every way a raster stores them.
Raster MixedRaster(std::mt19937& random, int width, int height, bool compact) {
  Raster raster;
  EXPECT_TRUE(raster.Allocate(width, height, false));
  raster.Fill(0, 0, width, height, 0xFF00FF);
  for (int n = 0; n < 12; ++n) {
    const int y = static_cast<int>(random() % static_cast<unsigned>(height));
    const int x = static_cast<int>(random() % static_cast<unsigned>(width));
    raster.MutableRow(y)[x] = random() & 0xFFFFFF;
  }
  if (random() % 2) raster.Fill(0, 16, width, std::min(height, 32), random() & 0xFFFFFF);
  if (compact) raster.Compact();
  return raster;
}

std::vector<std::uint32_t> Pixels(const Raster& raster) {
  std::vector<std::uint32_t> pixels;
  for (int y = 0; y < raster.height; ++y)
    pixels.insert(pixels.end(), raster.Row(y), raster.Row(y) + raster.width);
  return pixels;
}

TEST(RasterDifference, TurnsEitherSideIntoTheOtherAndCombines) {
  std::mt19937 random(29);
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(round);
    const int width = 1 + static_cast<int>(random() % 70);
    const int height = 1 + static_cast<int>(random() % 70);
    const Raster a = MixedRaster(random, width, height, random() % 2);
    Raster b;
    b.ShareFrom(a);  // shares every band: only what is drawn next differs
    for (int n = 0; n < 3; ++n) {
      const int y = static_cast<int>(random() % static_cast<unsigned>(height));
      std::fill_n(b.MutableRow(y), 1 + random() % static_cast<unsigned>(width), random() & 0xFFFFFF);
    }
    // Sometimes a spray as well: dots of one colour over many rows.
    if (random() % 2) {
      const std::uint32_t dot = random() & 0xFFFFFF;
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          if (random() % 4 == 0) b.MutableRow(y)[x] = dot;
        }
      }
    }
    if (random() % 2) b.Compact();
    const Raster c = MixedRaster(random, width, height, random() % 2);

    const Difference ab = Difference::Between(a, b);
    Raster turned;
    if (random() % 2) turned.Compact();  // bands then go back packed where that pays
    turned.ShareFrom(a);
    ab.ApplyTo(turned);
    EXPECT_EQ(Pixels(turned), Pixels(b));
    ab.ApplyTo(turned);
    EXPECT_EQ(Pixels(turned), Pixels(a));
    turned.ShareFrom(b);
    ab.ApplyTo(turned);
    EXPECT_EQ(Pixels(turned), Pixels(a));
    EXPECT_EQ(ab.empty(), Pixels(a) == Pixels(b));

    Difference ac = ab;
    ac.Combine(Difference::Between(b, c));
    turned.ShareFrom(a);
    ac.ApplyTo(turned);
    EXPECT_EQ(Pixels(turned), Pixels(c));
    ac.Combine(Difference::Between(c, a));
    EXPECT_TRUE(ac.empty());
  }
}

TEST(RasterDifference, SharedBandsCostNothingAndOneStrokeCostsItsRows) {
  Raster layer;
  ASSERT_TRUE(layer.Allocate(4000, 3000, false));
  layer.Fill(0, 0, 4000, 3000, 0xFF00FF);
  Raster kept;
  kept.Compact();
  kept.ShareFrom(layer);
  // A thin stroke down the whole layer: every band changes a little.
  for (int y = 0; y < 3000; ++y) std::fill_n(layer.MutableRow(y) + 1200 + y / 100, 3, 0x0000FF);
  EXPECT_TRUE(Difference::Between(kept, kept).empty());
  const Difference stroke = Difference::Between(kept, layer);
  EXPECT_LE(stroke.StoredBytes(), 3000u * 7 * sizeof(std::uint32_t));
  // Kept compact, the stroked layer packs to about the same.
  kept.CopyRows(layer, 0, 0, 0, 0, 4000, 3000);
  EXPECT_LE(kept.StoredBytes(), 4000u * 4 + 3000u * 8 * sizeof(std::uint32_t));
  EXPECT_EQ(Pixels(kept), Pixels(layer));
}

TEST(RasterDifference, ASprayCostsAMaskPerBandAndCombinesWithStrokes) {
  const int width = 4000;
  const int height = 64;  // four bands
  Raster layer;
  ASSERT_TRUE(layer.Allocate(width, height, false));
  layer.Fill(0, 0, width, height, 0xFF00FF);
  Raster kept;
  kept.Compact();
  kept.ShareFrom(layer);
  std::mt19937 random(17);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (random() % 5 == 0) layer.MutableRow(y)[x] = 0x0000FF;
    }
  }
  const Difference spray = Difference::Between(kept, layer);
  // Runs would cost a piece per gap between dots: several times the mask.
  EXPECT_LE(spray.StoredBytes(), 4 * (MaskedRows::MaskBytes(width, 16) + 64));
  Raster turned;
  turned.Compact();
  turned.ShareFrom(kept);
  spray.ApplyTo(turned);
  EXPECT_EQ(Pixels(turned), Pixels(layer));
  spray.ApplyTo(turned);
  EXPECT_EQ(Pixels(turned), Pixels(kept));

  // A stroke over the spray: its band holds a mask and runs combined.
  Raster stroked;
  stroked.ShareFrom(layer);
  for (int y = 0; y < height; ++y) std::fill_n(stroked.MutableRow(y) + 100, 5, 0x00FF00);
  Difference both = spray;
  both.Combine(Difference::Between(layer, stroked));
  turned.ShareFrom(kept);
  both.ApplyTo(turned);
  EXPECT_EQ(Pixels(turned), Pixels(stroked));
  both.ApplyTo(turned);
  EXPECT_EQ(Pixels(turned), Pixels(kept));
  both.Combine(Difference::Between(stroked, kept));
  EXPECT_TRUE(both.empty());
}

}  // namespace
