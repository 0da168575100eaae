// Rows of 32-bit pixels packed as runs, for pixels that are kept rather than drawn on:
// history snapshots and the differences between them. A drawing layer is mostly one
// key colour with strokes across it, and a difference between two of its states is
// mostly zero, so both pack to a small part of their rows and unpack at memory speed.
// Photographic rows do not pack; the callers keep those as they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/graphics_memory.h"

namespace platform::raster {

// Adds to (or, negative, takes from) the count LivePixelBytes reports.
void CountPixelStorage(std::ptrdiff_t bytes);

// Each row is a sequence of pieces, each a word with the piece's pixel count in the low
// 31 bits: with the top bit set one pixel follows, repeated that many times; with it
// clear, that many pixels follow as they are. Pieces never cross a row's end.
class PackedRows {
 public:
  static constexpr std::uint32_t kRepeated = 0x80000000u;  // the piece's flag bit

  // `count` rows of `width` pixels, `step` pixels apart. Throws std::bad_alloc, also
  // when the packed rows do not fit the graphics-memory budget.
  PackedRows(const std::uint32_t* rows, std::size_t step, int width, int count);
  PackedRows(const PackedRows&) = delete;
  PackedRows& operator=(const PackedRows&) = delete;
  ~PackedRows();
  // The exclusive or of two packed sets of rows of one size, piece by piece, without
  // unpacking them: runs against runs cost one word, not a pixel each. Throws
  // std::bad_alloc.
  static std::shared_ptr<const PackedRows> Xor(const PackedRows& a, const PackedRows& b);

  // Writes the rows to `out` (rows `step` pixels apart).
  void Unpack(std::uint32_t* out, std::size_t step) const;
  // Exclusive-ors the rows into `out`: rows of zeros leave it as it is.
  void XorInto(std::uint32_t* out, std::size_t step) const;
  // Whether every pixel is 0 (an exclusive or of equal rows).
  bool AllZero() const { return allZero_; }
  // Whether every pixel is one pixel, which is then stored in `pixel`.
  bool OneValue(std::uint32_t* pixel) const;
  // Calls visit(x, count, pixels, repeated) for each piece of row `row` in order:
  // `pixels` points at the one repeated pixel or at the `count` literal ones.
  template <typename Visit>
  void ForEachPiece(int row, Visit visit) const {
    const std::uint32_t* word = words_.data() + rowStarts_[static_cast<std::size_t>(row)];
    for (int x = 0; x < width_;) {
      const std::uint32_t header = *word++;
      const int count = static_cast<int>(header & ~kRepeated);
      const bool repeated = (header & kRepeated) != 0;
      visit(x, count, word, repeated);
      word += repeated ? 1 : count;
      x += count;
    }
  }

  int width() const { return width_; }
  int rows() const { return rows_; }
  std::size_t bytes() const { return (words_.capacity() + rowStarts_.capacity()) * sizeof(std::uint32_t); }

 private:
  PackedRows(int width, int rows) : width_(width), rows_(rows) {}
  void PackRow(const std::uint32_t* row);
  // Building rows piece by piece: a repeat joins the repeat before it when the pixel
  // is the same, and repeats too short to pay become literal pixels.
  void BeginRow();
  void AddRepeat(std::uint32_t pixel, int count);
  void AddLiterals(const std::uint32_t* pixels, int count);
  // Pixels as they come, their repeats found.
  void AddPixels(const std::uint32_t* pixels, int count);
  void Finish();
  template <typename Visit>
  void Decode(Visit visit) const;

  int width_ = 0;
  int rows_ = 0;
  std::vector<std::uint32_t> words_;
  std::vector<std::uint32_t> rowStarts_;  // where each row's pieces begin in words_
  // While building: the header of the row's last piece, if a repeat or literals.
  std::ptrdiff_t lastRepeat_ = -1;
  std::ptrdiff_t lastLiteral_ = -1;
  std::size_t counted_ = 0;  // bytes added to the live count once built
  GraphicsCharge charge_;    // the same bytes, against the budget
  bool allZero_ = true;      // noted as the pieces are added
};

}  // namespace platform::raster
