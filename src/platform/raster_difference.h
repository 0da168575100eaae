// What tells two rasters of one size and kind apart, kept small: for each band whose
// pixels differ, the exclusive or of the two packed as runs. Exclusive or turns either
// side into the other, so one difference serves both directions, and two differences
// combine into one the same way. Bands the two rasters share cost nothing to compare.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

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
  struct Band {
    int index;
    std::shared_ptr<const PackedRows> rows;
  };
  std::vector<Band> bands_;  // by index, each once
};

}  // namespace platform::raster
