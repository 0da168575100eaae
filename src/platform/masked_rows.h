// Rows of 32-bit pixels that are mostly zero, kept as a bit per pixel telling which
// are not and those pixels in order, packed as runs. A spray changes scattered dots
// over much of a layer: the exclusive or of two of its states is zero between the
// dots, which runs pack poorly (a piece for every gap), while a bit per pixel and one
// repeated colour cost a few kilobytes a band. Writing the rows into pixels touches
// only the pixels that are not zero.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/graphics_memory.h"
#include "platform/packed_rows.h"

namespace platform::raster {

class MaskedRows {
 public:
  // `count` rows of `width` pixels, `step` pixels apart. Throws std::bad_alloc, also
  // when the rows do not fit the graphics-memory budget.
  MaskedRows(const std::uint32_t* rows, std::size_t step, int width, int count);
  MaskedRows(const MaskedRows&) = delete;
  MaskedRows& operator=(const MaskedRows&) = delete;
  ~MaskedRows();

  // What the mask alone of that many rows costs: below it, runs are the smaller form.
  static std::size_t MaskBytes(int width, int count);

  // Exclusive-ors the rows into `out` (rows `step` pixels apart), visiting only the
  // pixels that are not zero.
  void XorInto(std::uint32_t* out, std::size_t step) const;
  bool AllZero() const { return values_ == nullptr; }

  int width() const { return width_; }
  int rows() const { return rows_; }
  std::size_t bytes() const { return counted_; }

 private:
  int width_;
  int rows_;
  std::size_t wordsPerRow_;
  std::vector<std::uint64_t> mask_;  // row by row; bit x % 64 of word x / 64 for pixel x
  // The pixels that are not zero, in row order, as one packed row; none when all are.
  std::unique_ptr<const PackedRows> values_;
  std::size_t counted_ = 0;  // the mask's bytes and the values', as counted and charged
  GraphicsCharge charge_;    // the mask's bytes (the values charge their own)
};

}  // namespace platform::raster
