// What tells two rasters of one size and kind apart, kept small: for each band whose
// pixels differ, the exclusive or of the two, packed as runs or, where that is smaller
// (changes scattered all over the band, as a spray leaves them), as a mask of the
// changed pixels with their values. Exclusive or turns either side into the other, so
// one difference serves both directions, and two differences combine into one the
// same way. Bands the two rasters share cost nothing to compare.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/masked_rows.h"
#include "platform/packed_rows.h"
#include "platform/raster.h"

namespace platform::raster {

class Difference {
 public:
  // Throws std::bad_alloc; `a` and `b` have one width and height.
  static Difference Between(const Raster& a, const Raster& b);

  // Turns a raster holding one side into the other. Throws std::bad_alloc (the bands
  // written so far stay written).
  void ApplyTo(Raster& raster) const;
  // Becomes the difference that does what this one and then `other` do. Throws
  // std::bad_alloc, leaving this one as it was.
  void Combine(const Difference& other);

  bool empty() const { return bands_.empty(); }
  std::size_t StoredBytes() const;

 private:
  // One of the two forms, whichever is smaller.
  struct Band {
    int index;
    std::shared_ptr<const PackedRows> runs;
    std::shared_ptr<const MaskedRows> masked;

    int width() const { return runs ? runs->width() : masked->width(); }
    int rows() const { return runs ? runs->rows() : masked->rows(); }
    bool AllZero() const { return runs ? runs->AllZero() : masked->AllZero(); }
    std::size_t bytes() const { return runs ? runs->bytes() : masked->bytes(); }
    void XorInto(std::uint32_t* out, std::size_t step) const;
  };
  // A band's pixels, made when first needed.
  using Scratch = std::unique_ptr<std::uint32_t[]>;
  // The band whose exclusive or `runs` holds, in the smaller form.
  static Band Smaller(int index, std::shared_ptr<const PackedRows> runs, Scratch& scratch);
  // The same for a band's exclusive or unpacked in `rows` (rows `width` apart), whose
  // runs are `runs` when known.
  static Band Smaller(int index, const std::uint32_t* rows, int width, int count,
                      std::shared_ptr<const PackedRows> runs = nullptr);
  // What both bands (of one index) do in turn.
  static Band Combined(const Band& first, const Band& second, Scratch& scratch);

  std::vector<Band> bands_;  // by index, each once, none all zero
};

}  // namespace platform::raster
