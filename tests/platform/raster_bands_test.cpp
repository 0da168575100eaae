// The banded, copy-on-write raster against a plain array of rows: seeded random
// fills, row copies (aligned, so that bands are shared, and not), writes through
// MutableRow, sprayed dots, rows replaced whole, whole copies, compaction (as runs or
// masks) and pinning, on awkward sizes; every row must read the same. Differences between such rasters must
// turn either into the other. Also the 24-bit row packing against a byte-by-byte loop, and paints that change
// nothing leaving shared bands shared.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

#include "platform/gdi.h"
#include "platform/raster.h"
#include "platform/raster_spans.h"

namespace {

using platform::raster::Raster;

struct Plain {
  int width, height;
  std::vector<std::uint32_t> pixels;
  std::uint32_t* Row(int y) { return pixels.data() + static_cast<std::size_t>(y) * width; }
};

void ExpectSame(const Raster& raster, Plain& plain, const char* what, int round) {
  for (int y = 0; y < plain.height; ++y) {
    const std::vector<std::uint32_t> row(raster.Row(y), raster.Row(y) + plain.width);
    const std::vector<std::uint32_t> expected(plain.Row(y), plain.Row(y) + plain.width);
    ASSERT_EQ(row, expected) << what << " round " << round << " row " << y;
  }
}

TEST(RasterBands, RandomOperationsReadLikePlainRows) {
  std::mt19937 random(5);
  const int sizes[][2] = {{1, 1}, {7, 33}, {64, 16}, {13, 47}, {40, 100}, {130, 40}};
  for (const auto& size : sizes) {
    const int w = size[0], h = size[1];
    Raster rasters[2];
    Plain plains[2] = {{w, h, {}}, {w, h, {}}};
    for (int i = 0; i < 2; ++i) {
      ASSERT_TRUE(rasters[i].Allocate(w, h, false));
      plains[i].pixels.assign(static_cast<std::size_t>(w) * h, 0);
    }
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 300; ++round) {
      const int a = pick(2), b = 1 - a;
      Raster& r = rasters[a];
      Plain& p = plains[a];
      const std::uint32_t colour = pick(3) == 0 ? 0x123456 : random() & 0xFFFFFF;
      switch (pick(9)) {
        case 0: {  // a fill, often of whole rows
          const bool whole = pick(2) == 0;
          const int x0 = whole ? 0 : pick(w), x1 = whole ? w : x0 + pick(w - x0 + 1);
          const int y0 = pick(h), y1 = y0 + pick(h - y0 + 1);
          r.Fill(x0, y0, x1, y1, colour);
          for (int y = y0; y < y1; ++y) std::fill(p.Row(y) + x0, p.Row(y) + x1, colour);
          break;
        }
        case 1: {  // a copy from the other raster, band-aligned half of the time
          const int count = 1 + pick(h);
          const int srcY = pick(h - count + 1);
          const int destY = pick(2) == 0 ? srcY : pick(h - count + 1);
          const bool whole = pick(2) == 0;
          const int columns = whole ? w : 1 + pick(w);
          const int srcX = whole ? 0 : pick(w - columns + 1), destX = whole ? 0 : pick(w - columns + 1);
          r.CopyRows(rasters[b], srcX, srcY, destX, destY, columns, count);
          for (int k = 0; k < count; ++k)
            std::copy(plains[b].Row(srcY + k) + srcX, plains[b].Row(srcY + k) + srcX + columns,
                      p.Row(destY + k) + destX);
          break;
        }
        case 2: {  // single pixels written
          for (int n = 0; n < 5; ++n) {
            const int x = pick(w), y = pick(h);
            r.MutableRow(y)[x] = colour;
            p.Row(y)[x] = colour;
          }
          break;
        }
        case 3:  // a whole copy
          r.ShareFrom(rasters[b]);
          p.pixels = plains[b].pixels;
          break;
        case 4: {  // rows replaced whole, every pixel written, as a pass into them does
          const int y0 = pick(h), y1 = y0 + 1 + pick(h - y0);
          r.OwnRowsToReplace(y0, y1);
          for (int y = y0; y < y1; ++y) {
            std::fill(r.MutableRow(y), r.MutableRow(y) + w, colour ^ static_cast<std::uint32_t>(y));
            std::fill(p.Row(y), p.Row(y) + w, colour ^ static_cast<std::uint32_t>(y));
          }
          break;
        }
        case 5:  // packed where that pays; later whole copies into it are packed too
          r.Compact();
          break;
        case 6:  // a spray: dots of one colour all over, which pack as a mask
          for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
              if (pick(4) != 0) continue;
              r.MutableRow(y)[x] = colour;
              p.Row(y)[x] = colour;
            }
          }
          break;
        case 7: {  // rows rewritten from what they held, as a transparent copy does
          const int y0 = pick(h), y1 = y0 + 1 + pick(h - y0);
          r.RewriteRows(y0, y1, [&](int y, const std::uint32_t* before, std::uint32_t* row) {
            for (int x = 0; x < w; ++x) row[x] = (x + y) % 3 == 0 ? colour : before[x] ^ 0x010101;
          });
          for (int y = y0; y < y1; ++y) {
            for (int x = 0; x < w; ++x) p.Row(y)[x] = (x + y) % 3 == 0 ? colour : p.Row(y)[x] ^ 0x010101;
          }
          break;
        }
        default:  // pinned: the block seen through the pointer is the raster's rows
          if (pick(8) == 0) {
            const std::uint32_t* block = r.Pin();
            ASSERT_EQ(std::vector<std::uint32_t>(block, block + p.pixels.size()), p.pixels);
          }
      }
      ExpectSame(rasters[0], plains[0], "raster 0", round);
      ExpectSame(rasters[1], plains[1], "raster 1", round);
    }
  }
}

TEST(RasterBands, UntouchedBandsCostOneRowAndWritesMaterialiseOnlyTheirBand) {
  Raster raster;
  ASSERT_TRUE(raster.Allocate(4000, 3000, false));
  EXPECT_EQ(raster.StoredBytes(), 4000u * 4);
  raster.MutableRow(100)[7] = 1;
  EXPECT_EQ(raster.StoredBytes(), 4000u * 4 * (1 + platform::raster::kBandRows));
  Raster copy;
  copy.ShareFrom(raster);
  copy.Fill(0, 0, 4000, 3000, 0x0B4313);
  EXPECT_EQ(copy.StoredBytes(), 4000u * 4);
  EXPECT_EQ(raster.Row(100)[7], 1u);
}

// A window repainting the columns of its picture that changed: where the columns
// left out already match, the window's bands become the picture's, so a repaint
// does not leave the window a copy of every band it touched; where they do not,
// only the columns asked for change.
TEST(RasterBands, CopiedColumnsShareTheBandWhenTheRestAlreadyMatches) {
  Raster picture;
  ASSERT_TRUE(picture.Allocate(4000, 64, false));
  picture.Fill(0, 0, 4000, 64, 0x336699);
  picture.MutableRow(5)[3000] = 0x010203;  // a band of its own
  Raster window;
  window.ShareFrom(picture);
  for (int y = 0; y < 64; ++y) std::fill_n(picture.MutableRow(y) + 100, 3, 0xFF0000u + y);
  window.CopyRows(picture, 100, 0, 100, 0, 3, 64);
  for (int band = 0; band < window.BandCount(); ++band) EXPECT_TRUE(window.SameBand(picture, band, band));
  for (int y = 0; y < 64; ++y) ASSERT_EQ(window.Row(y)[101], 0xFF0000u + y);

  // Rows copied onto rows that hold the same pixels already stay shared, even where
  // the copy is not band-aligned (a surface refilled with what it shows).
  Raster shifted;
  ASSERT_TRUE(shifted.Allocate(4100, 64, false));
  shifted.Fill(0, 0, 4100, 64, 0x336699);
  for (int y = 0; y < 64; ++y) std::copy_n(picture.Row(y), 4000, shifted.MutableRow(y) + 50);
  Raster sharer;
  sharer.ShareFrom(shifted);
  shifted.CopyRows(picture, 0, 0, 50, 0, 4000, 64);
  for (int band = 0; band < shifted.BandCount(); ++band) EXPECT_TRUE(shifted.SameBand(sharer, band, band));
  for (int y = 0; y < 64; ++y) ASSERT_EQ(shifted.Row(y)[151], 0xFF0000u + y);

  window.MutableRow(40)[3999] = 0x00AA00;  // the window differs beside the columns now
  picture.MutableRow(40)[100] = 0x0000AA;
  window.CopyRows(picture, 100, 32, 100, 32, 3, 32);
  EXPECT_EQ(window.Row(40)[100], 0x0000AAu);
  EXPECT_EQ(window.Row(40)[3999], 0x00AA00u);
  EXPECT_EQ(picture.Row(40)[3999], 0x336699u);
}

TEST(RasterBands, APaintThatChangesNothingLeavesItsBandShared) {
  using platform::raster::Rop2Index;
  Raster raster;
  ASSERT_TRUE(raster.Allocate(64, 40, false));
  raster.MutableRow(3)[5] = 0x123456;
  Raster copy;
  copy.ShareFrom(raster);
  const std::vector<platform::raster::Span> spans = {{3, 0, 10}, {20, 4, 9}};
  struct Case {
    const char* what;
    int mode;
    std::uint32_t pen;
    bool changes;
  };
  const Case cases[] = {{"nop", R2_NOP, 0x00FF00, false},
                        {"and white", R2_MASKPEN, platform::raster::kWhite, false},
                        {"or black", R2_MERGEPEN, platform::raster::kBlack, false},
                        {"xor black", R2_XORPEN, platform::raster::kBlack, false},
                        {"and grey", R2_MASKPEN, 0x808080, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    platform::raster::PaintSpans(copy, spans, c.pen, Rop2Index(c.mode));
    platform::raster::PaintPixel(copy, 1, 20, c.pen, Rop2Index(c.mode));
    EXPECT_EQ(copy.Row(3) == raster.Row(3), !c.changes);
    EXPECT_EQ(copy.Row(20) == raster.Row(20), !c.changes);
  }
}

TEST(RasterBands, PackingMatchesByteByByteConversion) {
  std::mt19937 random(9);
  for (int count = 0; count < 40; ++count) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(count));
    for (auto& p : pixels) p = random();
    std::vector<std::uint8_t> packed(static_cast<std::size_t>(count) * 3 + 1, 0xEE);
    platform::raster::PackRow24(pixels.data(), packed.data(), count);
    std::vector<std::uint32_t> unpacked(static_cast<std::size_t>(count) + 1, 0xDEADBEEF);
    platform::raster::UnpackRow24(packed.data(), unpacked.data(), count);
    for (int x = 0; x < count; ++x) {
      const std::uint32_t p = pixels[static_cast<std::size_t>(x)];
      for (int k = 0; k < 3; ++k)
        ASSERT_EQ(packed[static_cast<std::size_t>(3 * x + k)], (p >> (8 * k)) & 0xFF);
      ASSERT_EQ(unpacked[static_cast<std::size_t>(x)], p & 0xFFFFFF);
    }
    EXPECT_EQ(packed.back(), 0xEE) << "wrote past the row";
    EXPECT_EQ(unpacked.back(), 0xDEADBEEFu) << "wrote past the row";
  }
}

// A layer sprayed with dots keeps, compacted, a mask per band: a bit a pixel and the
// dots' colour; it reads back, is written on and shared as any band is.
TEST(RasterBands, SprayedBandsKeepAMaskAndReadBack) {
  const int width = 1000, height = 40;
  Raster layer;
  ASSERT_TRUE(layer.Allocate(width, height, false));
  layer.Fill(0, 0, width, height, 0xFF00FF);
  std::mt19937 random(4);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (random() % 5 == 0) layer.MutableRow(y)[x] = 0x0000FF;
    }
  }
  Plain plain{width, height, {}};
  for (int y = 0; y < height; ++y)
    plain.pixels.insert(plain.pixels.end(), layer.Row(y), layer.Row(y) + width);

  Raster kept;
  kept.Compact();
  kept.ShareFrom(layer);
  for (int band = 0; band < kept.BandCount(); ++band) EXPECT_TRUE(kept.BandMasked(band)) << band;
  const std::size_t maskBytes = platform::raster::MaskedRows::MaskBytes(width, 16);
  EXPECT_LE(kept.StoredBytes(), 3 * (maskBytes + 64));
  ExpectSame(kept, plain, "masked", 0);

  // A copy of the kept raster shares its masks; a write gives the band rows again.
  Raster copy;
  copy.Compact();
  copy.ShareFrom(kept);
  EXPECT_TRUE(copy.SameBand(kept, 1, 1));
  copy.MutableRow(20)[999] = 0x123456;
  plain.Row(20)[999] = 0x123456;
  EXPECT_FALSE(copy.BandMasked(1));
  ExpectSame(copy, plain, "written", 0);
  copy.Compact();
  EXPECT_TRUE(copy.BandMasked(1));
  ExpectSame(copy, plain, "compacted again", 0);
}

// Every way of writing a raster gives it a new version, and reading it (unpacking a
// packed band included) or packing it does not; a raster moved into is another one,
// and one whose pixels a pointer may write has none.
TEST(RasterBands, EveryWriterChangesTheVersionAndReadersDoNot) {
  Raster raster, other;
  ASSERT_TRUE(raster.Allocate(40, 40, false));
  ASSERT_TRUE(other.Allocate(40, 40, false));
  std::vector<std::uint32_t> band(40 * 16, 0x123456);
  const std::function<void()> writers[] = {
      [&] { raster.MutableRow(3)[0] = 1; },
      [&] { raster.Fill(0, 0, 5, 5, 2); },
      [&] { raster.CopyRows(other, 0, 0, 0, 0, 40, 20); },
      [&] { raster.RewriteRows(0, 16, [](int, const std::uint32_t*, std::uint32_t* row) { row[0] = 3; }); },
      [&] { raster.OwnRowsToReplace(16, 32); },
      [&] { raster.Discard(16, 32); },
      [&] { raster.ReplaceBand(1, band.data()); },
      [&] { raster.ShareFrom(other); },
      [&] { raster.Allocate(40, 40, false); },
  };
  for (std::size_t i = 0; i < std::size(writers); ++i) {
    const auto before = raster.Version();
    writers[i]();
    EXPECT_NE(raster.Version(), before) << "writer " << i;
  }
  raster.Compact();
  const auto packed = raster.Version();
  for (int y = 0; y < raster.height; ++y) (void)raster.Row(y);
  raster.ReadBand(0, band.data());
  raster.Compact();
  EXPECT_EQ(raster.Version(), packed);

  Raster moved(std::move(raster));
  EXPECT_NE(moved.Version(), packed);
  EXPECT_NE(raster.Version(), packed);
  moved.Pin();
  EXPECT_EQ(moved.Version(), std::nullopt);
}

}  // namespace
