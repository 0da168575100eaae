// The software raster under GDI: a block of 32-bit pixels and the row kernels that
// every blit shares (format conversion between monochrome and colour, ternary raster
// operations). Nothing here knows about handles or DCs.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/bitmap_version.h"
#include "platform/graphics_memory.h"
#include "platform/masked_rows.h"
#include "platform/packed_rows.h"
#include "platform/types.h"

namespace platform::raster {

inline constexpr std::uint32_t kBlack = 0x00000000;
inline constexpr std::uint32_t kWhite = 0x00FFFFFF;
inline constexpr std::uint32_t kColorMask = 0x00FFFFFF;
// Larger rasters are refused as if memory had run out (1 GiB of pixels).
inline constexpr std::int64_t kMaxPixels = std::int64_t{1} << 28;

// Pixels are 0x00RRGGBB (bytes blue, green, red, 0 in memory: the 32-bit DIB layout),
// rows top-down. A monochrome raster holds only kBlack (bit 0) and kWhite (bit 1), so
// the bitwise raster operations work on both kinds without special cases.
//
// Storage is copy-on-write in bands of kBandRows rows. A band is either one colour
// (kept as a single row that every row of the band reads) or rows of its own; bands
// are shared by reference between rasters, so a whole copy between rasters of the same
// width shares them instead of copying, and a writer materialises only the bands it
// touches. A new bitmap, a filled one and a copy of an unchanged one thus cost almost
// nothing, and a history snapshot of an untouched drawing layer shares everything.
// Every reader goes through Row() and every writer through MutableRow(), which is the
// only way to get a writable pointer: never write through a pointer from Row().
//
// A compact raster (a history snapshot: kept, rarely drawn on) stores bands packed
// where that pays: as runs (packed_rows.h), or, where the pixels change too often along
// the rows for runs (dots sprayed over a layer), as a mask against the band's most
// common pixel (masked_rows.h). Reading or writing a packed band unpacks it
// into rows of its own first, so Row() may store rows but never changes a pixel;
// Compact() packs what was unpacked. A band unpacked from a packed one, or packed for a
// copy into a compact raster, remembers its packed form until it is written, so that
// copying it into a compact raster again costs nothing.
//
// A pinned raster keeps all its rows in one contiguous block that it never shares, so
// a pointer to its pixels (a DIB section's bits) stays valid and sees every change.
inline constexpr int kBandShift = 4;
inline constexpr int kBandRows = 1 << kBandShift;

// A raster's version (bitmap_version.h). Writers on several threads at once may lose
// steps of the count, but it never comes back to a value a reader saw before their
// writes.
class WriteCount {
 public:
  WriteCount() = default;
  // A raster moved into is another raster, and the one moved from has changed.
  WriteCount(WriteCount&& other) noexcept { other.Note(); }
  WriteCount& operator=(WriteCount&& other) noexcept {
    serial_ = NewSerial();
    writes_.store(0, std::memory_order_relaxed);
    other.Note();
    return *this;
  }
  WriteCount(const WriteCount&) = delete;
  WriteCount& operator=(const WriteCount&) = delete;

  void Note() { writes_.store(writes_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed); }
  PixelsVersion Read() const { return PixelsVersion{serial_, writes_.load(std::memory_order_relaxed)}; }

 private:
  static std::uint64_t NewSerial();
  std::uint64_t serial_ = NewSerial();
  std::atomic<std::uint64_t> writes_{0};
};

class Raster {
 public:
  Raster() = default;
  Raster(Raster&&) noexcept = default;
  Raster& operator=(Raster&&) noexcept = default;
  // Copies share bands; use ShareFrom, which also respects pinning.
  Raster(const Raster&) = delete;
  Raster& operator=(const Raster&) = delete;

  int width = 0;
  int height = 0;
  bool mono = false;

  // Row y for reading; valid until this raster next changes.
  const std::uint32_t* Row(int y) const {
    const Band& band = bands_[static_cast<std::size_t>(y >> kBandShift)];
    const std::uint32_t* rows = band.rows ? band.rows : Unpacked(y >> kBandShift);
    return rows + static_cast<std::size_t>(y & (kBandRows - 1)) * band.step;
  }
  // Row y for writing: its band becomes this raster's own first (copied, unpacked or
  // expanded from its single colour). Ask for the written rows before reading rows of
  // the same raster that may share their band. A band's rows are `width` apart.
  std::uint32_t* MutableRow(int y) {
    writes_.Note();
    Band& band = bands_[static_cast<std::size_t>(y >> kBandShift)];
    if (!Writable(band)) MakeWritable(y >> kBandShift);
    return band.rows + static_cast<std::size_t>(y & (kBandRows - 1)) * band.step;
  }
  // Rows [y0, y1) made this raster's own for writing, as MutableRow does, except that
  // a band lying wholly inside them gets fresh storage without its pixels being
  // copied: for a writer that replaces every pixel of those rows. MutableRow then
  // costs nothing for them, so writers on several threads can share the rows.
  void OwnRowsToReplace(int y0, int y1);
  // Rows [y0, y1), all their columns, rewritten by rewrite(y, before, row): `before`
  // is row y as it was and `row` the storage the rewrite fills whole (they may be the
  // same). A band lying wholly among them whose rows are shared, or one colour, gets
  // fresh storage written straight from its old pixels: one pass over them, where
  // MutableRow would copy them first and the writer go over them again.
  void RewriteRows(
      int y0, int y1,
      const std::function<void(int y, const std::uint32_t* before, std::uint32_t* row)>& rewrite);
  // The colour of every pixel of row y when its band is stored as one colour.
  bool RowIsUniform(int y, std::uint32_t* pixel) const {
    const Band& band = bands_[static_cast<std::size_t>(y >> kBandShift)];
    if (band.step != 0) return false;
    *pixel = band.rows[0];
    return true;
  }

  // Gives a black width x height raster, charged its whole size against the
  // graphics-memory budget unless `charged` is false; false (raster untouched) when
  // the size is not positive, beyond kMaxPixels or past the budget.
  bool Allocate(int newWidth, int newHeight, bool newMono, bool charged = true);
  // Columns [x0, x1) of rows [y0, y1) become `pixel`; bands covered whole become one
  // colour.
  void Fill(int x0, int y0, int x1, int y1, std::uint32_t pixel);
  // Rows [y0, y1) that nobody reads before writing them again: the bands wholly among
  // them give up their storage; rows sharing a band with other rows stay as they are.
  void Discard(int y0, int y1);
  // Rows [srcY, srcY + count) of `src`, columns [srcX, srcX + columns), are copied to
  // rows from destY, columns from destX. Whole bands of equal-width rasters at the
  // same band offset are shared rather than copied. `src` is another raster.
  void CopyRows(const Raster& src, int srcX, int srcY, int destX, int destY, int columns, int count);
  // This raster becomes a copy of `src` (same size and kind), sharing its bands.
  void ShareFrom(const Raster& src);
  // Makes the rows one contiguous block that stays this raster's own; returns it.
  std::uint32_t* Pin();
  bool pinned() const { return pinned_ != nullptr; }
  // Bytes of pixel rows this raster keeps alive (shared bands counted in full).
  std::size_t StoredBytes() const;
  // None for a pinned raster: its pixels are written through a pointer, unseen.
  std::optional<PixelsVersion> Version() const {
    if (pinned()) return std::nullopt;
    return writes_.Read();
  }

  // Makes the raster compact: its bands packed now where that pays, and bands later
  // copied in whole packed too. Pinned rasters stay as they are, and so do bands whose
  // packed form does not fit in memory or the budget (the raster's charge covers them).
  void Compact();
  bool compact() const { return compact_; }

  int BandCount() const { return static_cast<int>(bands_.size()); }
  int BandHeight(int band) const {
    const int first = band << kBandShift;
    return height - first < kBandRows ? height - first : kBandRows;
  }
  // Whether band `band` of this raster and band `otherBand` of `other` (one width) are
  // known to hold the same pixels without reading them: one storage, one packed form
  // or one colour.
  bool SameBand(const Raster& other, int band, int otherBand) const;
  // Band `band`'s rows into `out` (rows `width` apart), leaving the raster as it is.
  void ReadBand(int band, std::uint32_t* out) const;
  // The same rows exclusive-ored into `out`, read where they are kept.
  void XorBandInto(int band, std::uint32_t* out) const;
  // Band `band` packed as runs, when that is known; null otherwise.
  const std::shared_ptr<const PackedRows>& BandPacked(int band) const {
    return bands_[static_cast<std::size_t>(band)].packed;
  }
  // Band `band` masked, when that is known; null otherwise.
  const std::shared_ptr<const MaskedRows>& BandMasked(int band) const {
    return bands_[static_cast<std::size_t>(band)].masked;
  }
  // Band `band` becomes `packed` (of the band's size), stored packed.
  void SetBandPacked(int band, std::shared_ptr<const PackedRows> packed);
  // The same, stored masked.
  void SetBandMasked(int band, std::shared_ptr<const MaskedRows> masked);
  // Band `band` becomes the pixels of `rows` (rows `width` apart), kept as a compact
  // raster keeps a band: packed where that pays. For a writer that works on a band
  // elsewhere and puts it back whole, so the band's old storage is never copied.
  void ReplaceBand(int band, const std::uint32_t* rows);

 private:
  struct Block;
  struct Band {
    std::shared_ptr<Block> block;   // none while the band is only packed
    std::uint32_t* rows = nullptr;  // null while the band is only packed
    std::size_t step = 0;           // width for rows of its own or packed, 0 for one colour
    // The same pixels packed (as runs or masked, at most one), while known; a write in
    // place forgets them.
    std::shared_ptr<const PackedRows> packed;
    bool packingFailed = false;  // packing was tried on these pixels and did not pay
    std::shared_ptr<const MaskedRows> masked;
  };
  static bool Writable(const Band& band) {
    return band.step != 0 && band.rows && !band.packed && !band.masked && !band.packingFailed &&
           band.block.use_count() == 1;
  }
  static Band UniformBand(const std::shared_ptr<Block>& block);
  Band PackedOnly(std::shared_ptr<const PackedRows> packed) const;
  Band MaskedOnly(std::shared_ptr<const MaskedRows> masked) const;
  // A band of that many rows of its own, its pixels not yet written.
  Band FreshBand(int rows) const;
  std::shared_ptr<Block> UniformBlock(std::uint32_t pixel) const;
  void MakeWritable(int band);
  void Materialise(int band);
  const std::uint32_t* Unpacked(int band) const;
  // Whether `rows` rows from destY here and from srcY in `src` (one width) hold the
  // same pixels outside columns [x0, x1).
  bool ColumnsMatchBeside(const Raster& src, int srcY, int destY, int rows, int x0, int x1) const;
  // The band (of `rows` rows) as a compact raster keeps it: packed when packing pays.
  // Packing is remembered on `from`, which may belong to another raster.
  Band Kept(Band& from, int rows) const;
  // Sets the packed form of `count` rows (`step` apart) on `band`, runs or a mask as
  // the rows suit (MaskedRows::BeatsRuns), when it saves at least half of them; false,
  // `band` as it was, otherwise. Throws std::bad_alloc, also past the budget.
  bool PackWherePays(const std::uint32_t* rows, std::size_t step, int count, Band& band) const;

  // Mutable because Row() unpacks a packed band on first read; the pixels stay as they are.
  mutable std::vector<Band> bands_;
  std::uint32_t* pinned_ = nullptr;
  bool compact_ = false;
  GraphicsCharge charge_;
  WriteCount writes_;  // noted by every writer, MutableRow included
};

// Bytes of pixel storage alive in every raster of the process together.
std::size_t LivePixelBytes();

constexpr std::uint32_t PixelOf(COLORREF color) {
  return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}
constexpr COLORREF ColorOf(std::uint32_t pixel) {
  return ((pixel & 0xFF) << 16) | (pixel & 0xFF00) | ((pixel >> 16) & 0xFF);
}
// The nearer of black and white: white when red + green + blue exceeds half of 3 x 255.
constexpr std::uint32_t NearestMono(std::uint32_t pixel) {
  const unsigned sum = (pixel & 0xFF) + ((pixel >> 8) & 0xFF) + ((pixel >> 16) & 0xFF);
  return sum > 382 ? kWhite : kBlack;
}
// A colour as a pixel of a raster of the given kind.
constexpr std::uint32_t PixelFor(COLORREF color, bool mono) {
  return mono ? NearestMono(PixelOf(color)) : PixelOf(color);
}

// How source pixels become destination pixels when the formats differ: a monochrome
// source's 1 bits become `one` and its 0 bits `zero` (the destination DC's background
// and text colours); a colour source onto a monochrome destination gives 1 exactly where
// the pixel equals `key` (the source DC's background colour).
struct Conversion {
  enum class Kind { None, MonoToColor, ColorToMono } kind = Kind::None;
  std::uint32_t one = kWhite;
  std::uint32_t zero = kBlack;
  std::uint32_t key = kWhite;
};
constexpr std::uint32_t ConvertPixel(const Conversion& conversion, std::uint32_t in) {
  switch (conversion.kind) {
    case Conversion::Kind::MonoToColor:
      return in ? conversion.one : conversion.zero;
    case Conversion::Kind::ColorToMono:
      return (in & kColorMask) == conversion.key ? kWhite : kBlack;
    case Conversion::Kind::None:
      break;
  }
  return in;
}
void ConvertRow(const Conversion& conversion, const std::uint32_t* in, std::uint32_t* out, int count);

// 32-bit pixels to packed 24-bit blue, green, red bytes and back (the top byte is
// dropped, and read back as 0). Both work four pixels at a time on whole words.
void PackRow24(const std::uint32_t* in, std::uint8_t* out, int count);
void UnpackRow24(const std::uint8_t* in, std::uint32_t* out, int count);

// Ternary raster operations, by the operation index (bits 16..23 of the ROP code): bit
// (P*4 + S*2 + D) of the index is the result for pattern bit P, source bit S, dest bit D.
constexpr std::uint8_t RopIndex(DWORD rop) { return static_cast<std::uint8_t>((rop >> 16) & 0xFF); }
constexpr bool RopUsesSource(std::uint8_t index) { return ((index >> 2) ^ index) & 0x33; }
constexpr bool RopUsesPattern(std::uint8_t index) { return ((index >> 4) ^ index) & 0x0F; }
constexpr bool RopUsesDest(std::uint8_t index) { return ((index >> 1) ^ index) & 0x55; }

// The ternary index of a binary raster operation (SetROP2's R2_BLACK 1 .. R2_WHITE 16)
// with the pen as the pattern: bit (P*2 + D) of mode - 1 is the result for pen bit P and
// destination bit D, whatever the source bit.
constexpr std::uint8_t Rop2Index(int mode) {
  std::uint8_t index = 0;
  for (int term = 0; term < 8; ++term) {
    const int pen = term >> 2;
    const int dest = term & 1;
    if (((mode - 1) >> (pen * 2 + dest)) & 1) index = static_cast<std::uint8_t>(index | (1 << term));
  }
  return index;
}
static_assert(Rop2Index(13) == 0xF0 && Rop2Index(10) == 0xA5 && Rop2Index(6) == 0x55 &&
              Rop2Index(11) == 0xAA);

// Whether an operation that does not read the source leaves every destination pixel
// as it is with this pattern (R2_NOP always; R2_MASKPEN with a white pen, ...).
bool RopKeepsDestination(std::uint8_t index, std::uint32_t pattern);

// dst[i] = rop(pattern, src[i], dst[i]) for `count` pixels; `src` may be null when the
// operation does not read it. Results are masked to 24 bits.
void ApplyRop(std::uint8_t index, const std::uint32_t* src, std::uint32_t pattern, std::uint32_t* dst,
              int count);

}  // namespace platform::raster
