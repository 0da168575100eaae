// Rows of 32-bit pixels packed as runs, for pixels that are kept rather than drawn on:
// history snapshots and the differences between them. A drawing layer is mostly one
// key colour with strokes across it, and a difference between two of its states is
// mostly zero, so both pack to a small part of their rows and unpack at memory speed.
// Photographic rows do not pack; the callers keep those as they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace platform::raster {

// Adds to (or, negative, takes from) the count LivePixelBytes reports.
void CountPixelStorage(std::ptrdiff_t bytes);

// Each row is a sequence of pieces, each a word with the piece's pixel count in the low
// 31 bits: with the top bit set one pixel follows, repeated that many times; with it
// clear, that many pixels follow as they are. Pieces never cross a row's end.
class PackedRows {
 public:
  // `count` rows of `width` pixels, `step` pixels apart. Throws std::bad_alloc.
  PackedRows(const std::uint32_t* rows, std::size_t step, int width, int count);
  // Same, for the exclusive or of two sets of rows: what turns either into the other.
  PackedRows(const std::uint32_t* a, const std::uint32_t* b, std::size_t step, int width, int count);
  PackedRows(const PackedRows&) = delete;
  PackedRows& operator=(const PackedRows&) = delete;
  ~PackedRows();

  // Writes the rows to `out` (rows `step` pixels apart).
  void Unpack(std::uint32_t* out, std::size_t step) const;
  // Exclusive-ors the rows into `out`: rows of zeros leave it as it is.
  void XorInto(std::uint32_t* out, std::size_t step) const;
  // Whether every pixel is 0 (an exclusive or of equal rows).
  bool AllZero() const;

  int width() const { return width_; }
  int rows() const { return rows_; }
  std::size_t bytes() const { return words_.capacity() * sizeof(std::uint32_t); }

 private:
  void PackRow(const std::uint32_t* row);
  template <typename Visit>
  void Decode(Visit visit) const;

  int width_ = 0;
  int rows_ = 0;
  std::vector<std::uint32_t> words_;
};

}  // namespace platform::raster
