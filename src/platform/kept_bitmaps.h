// Bitmaps that are kept rather than drawn on, such as the snapshots an edit history
// holds, made cheap to keep: a kept bitmap stores its rows packed where they pack, and
// two states of a bitmap can be kept as one of them and the difference between them.
// Drawing on a kept bitmap or reading it works as on any other; what it unpacks for
// that stays unpacked until it is compacted again.
#pragma once

#include <cstddef>
#include <memory>

#include "platform/types.h"

namespace platform {

namespace raster {
class Difference;
}

// Packs the bitmap's rows where that pays, now and whenever whole rows are copied into
// it later; packing rows copied from another bitmap is remembered with that bitmap's
// rows, so that copying them again while unchanged costs nothing. Rows whose packed
// form does not fit in memory stay unpacked. False for anything but a bitmap; the
// pixels never change.
bool CompactBitmap(HBITMAP bitmap);

// Rows top to bottom - 1 of the bitmap that the caller will not read before writing
// them again (a buffer composed afresh for whatever reads it): whole bands among them
// give up their memory, their pixels left undefined. False for anything but a bitmap.
bool DiscardBitmapRows(HBITMAP bitmap, int top, int bottom);

// What turns a bitmap's pixels into another's of the same size and kind, and back.
class BitmapDifference {
 public:
  BitmapDifference();
  BitmapDifference(BitmapDifference&&) noexcept;
  BitmapDifference& operator=(BitmapDifference&&) noexcept;
  ~BitmapDifference();

  // The difference between `a` and `b`. False, this one left as it was, when they
  // differ in size or kind, are not bitmaps, or memory runs out.
  bool Measure(HBITMAP a, HBITMAP b);
  // Turns a bitmap holding one side into the other, compacting it again if it was
  // kept compact. False, the bitmap as it was, when it does not fit or memory runs out.
  bool ApplyTo(HBITMAP bitmap) const;
  // Becomes the difference that does what this one and then `next` do. False, this
  // one as it was, when memory runs out.
  bool Combine(const BitmapDifference& next);
  // Whether the two sides have the same pixels.
  bool empty() const;
  std::size_t StoredBytes() const;

 private:
  std::unique_ptr<raster::Difference> difference_;
  int width_ = 0;
  int height_ = 0;
  bool mono_ = false;
};

}  // namespace platform
