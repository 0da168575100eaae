// Rows of 32-bit pixels that are mostly one pixel (the background), kept as a bit per
// pixel telling which are not and those pixels in order, packed as runs. A spray
// leaves scattered dots over much of a layer: runs pack that poorly (a piece for every
// gap between dots), while a bit per pixel and the dots' one colour cost a few
// kilobytes a band. The exclusive or of two states of a layer is such rows too, with
// a background of 0; writing it into pixels touches only the pixels that change.
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
  // `count` rows of `width` pixels, `step` pixels apart, against `background`. Throws
  // std::bad_alloc, also when the rows do not fit the graphics-memory budget.
  MaskedRows(const std::uint32_t* rows, std::size_t step, int width, int count, std::uint32_t background = 0);
  MaskedRows(const MaskedRows&) = delete;
  MaskedRows& operator=(const MaskedRows&) = delete;
  ~MaskedRows();

  // What the mask alone of that many rows costs: below it, runs are the smaller form.
  static std::size_t MaskBytes(int width, int count);
  // Whether runs of these rows (`step` apart) would cost at least a mask: each place
  // where a row changes pixel costs runs a word or two, and a mask a bit a pixel
  // whatever the pixels.
  static bool BeatsRuns(const std::uint32_t* rows, std::size_t step, int width, int count);

  // Rows as `kept` has them, each pixel exclusive-ored with that of `change` (rows of
  // one size with a background of 0), without unpacking either: the cost goes with
  // the pixels that are not the background, not with the rows' size. Throws
  // std::bad_alloc.
  static std::shared_ptr<const MaskedRows> Xor(const MaskedRows& kept, const MaskedRows& change);
  // The same with the change packed as runs: the cost goes with its pieces and its
  // pixels that are not 0.
  static std::shared_ptr<const MaskedRows> Xor(const MaskedRows& kept, const PackedRows& change);

  // The pixel that occurs in more than half of `count` pixels, if one does; otherwise
  // one of them. A band's first row mostly tells its background well enough.
  static std::uint32_t MostPixels(const std::uint32_t* pixels, int count);

  // Writes the rows to `out` (rows `step` pixels apart).
  void Unpack(std::uint32_t* out, std::size_t step) const;
  // Exclusive-ors the rows into `out`: with a background of 0, only the pixels that
  // are not the background are visited.
  void XorInto(std::uint32_t* out, std::size_t step) const;
  bool AllZero() const { return background_ == 0 && values_ == nullptr; }
  // Whether at most half of the pixels are not the background.
  bool MostlyBackground() const;

  int width() const { return width_; }
  int rows() const { return rows_; }
  std::size_t bytes() const { return counted_; }

 private:
  MaskedRows(int width, int count, std::uint32_t background);
  // `rows` masked against a background of 0, piece by piece.
  explicit MaskedRows(const PackedRows& rows);
  // Counts and charges the rows once built.
  void Finish(const std::uint32_t* values, std::size_t found);
  // Xor for rows of two pixels, the background and `dot`, changed by a change that
  // turns one into the other: word by word, whatever the number of dots.
  static std::shared_ptr<const MaskedRows> XorOfTwoPixels(const MaskedRows& kept, const MaskedRows& change,
                                                          std::uint32_t dot);
  // The same rows masked against another background, when most pixels are not it.
  std::shared_ptr<const MaskedRows> Rebased() const;
  // The pixels that are not the background, in order, and a 0 after them.
  std::vector<std::uint32_t> Values() const;

  // Calls visit(pixel, value) for each pixel that is not the background, in order.
  template <typename Visit>
  void ForEachValue(std::uint32_t* out, std::size_t step, Visit visit) const;

  int width_;
  int rows_;
  std::uint32_t background_;
  std::size_t wordsPerRow_;
  std::vector<std::uint64_t> mask_;  // row by row; bit x % 64 of word x / 64 for pixel x
  // The pixels that are not the background, in row order, as one packed row; none
  // when all are.
  std::unique_ptr<const PackedRows> values_;
  std::size_t counted_ = 0;  // the mask's bytes and the values', as counted and charged
  GraphicsCharge charge_;    // the mask's bytes (the values charge their own)
};

}  // namespace platform::raster
