#include "platform/kept_bitmaps.h"

#include <new>
#include <utility>

#include "platform/gdi_objects.h"
#include "platform/raster_difference.h"

namespace platform {

namespace {

raster::Raster* RasterOf(HBITMAP bitmap) {
  auto* object = gdi::Lookup<gdi::BitmapObject>(bitmap);
  return object ? &object->raster : nullptr;
}

}  // namespace

bool CompactBitmap(HBITMAP bitmap) {
  raster::Raster* pixels = RasterOf(bitmap);
  if (!pixels) return false;
  pixels->Compact();
  return true;
}

bool DiscardBitmapRows(HBITMAP bitmap, int top, int bottom) {
  raster::Raster* pixels = RasterOf(bitmap);
  if (!pixels) return false;
  pixels->Discard(top, bottom);
  return true;
}

BitmapDifference::BitmapDifference() = default;
BitmapDifference::BitmapDifference(BitmapDifference&&) noexcept = default;
BitmapDifference& BitmapDifference::operator=(BitmapDifference&&) noexcept = default;
BitmapDifference::~BitmapDifference() = default;

bool BitmapDifference::Measure(HBITMAP a, HBITMAP b) {
  const raster::Raster* first = RasterOf(a);
  const raster::Raster* second = RasterOf(b);
  if (!first || !second || first->width != second->width || first->height != second->height ||
      first->mono != second->mono)
    return false;
  try {
    difference_ = std::make_unique<raster::Difference>(raster::Difference::Between(*first, *second));
  } catch (const std::bad_alloc&) {
    return false;
  }
  width_ = first->width;
  height_ = first->height;
  mono_ = first->mono;
  return true;
}

bool BitmapDifference::ApplyTo(HBITMAP bitmap) const {
  raster::Raster* pixels = RasterOf(bitmap);
  if (!pixels || pixels->width != width_ || pixels->height != height_ || pixels->mono != mono_) return false;
  if (!difference_ || difference_->empty()) return true;
  // A pinned raster's rows are its own already, so writing them needs no memory.
  if (pixels->pinned()) {
    difference_->ApplyTo(*pixels);
    return true;
  }
  // Otherwise the change is made on a copy sharing the rows and kept only when it is
  // whole, so that running out of memory half way leaves no mixture of both sides.
  try {
    raster::Raster changed;
    // Compact before the change, so that packed bands take it as runs.
    if (pixels->compact()) changed.Compact();
    changed.ShareFrom(*pixels);
    difference_->ApplyTo(changed);
    if (pixels->compact()) changed.Compact();
    *pixels = std::move(changed);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

bool BitmapDifference::Combine(const BitmapDifference& next) {
  if (!next.difference_) return true;
  if (!difference_) {
    try {
      difference_ = std::make_unique<raster::Difference>(*next.difference_);
    } catch (const std::bad_alloc&) {
      return false;
    }
    width_ = next.width_;
    height_ = next.height_;
    mono_ = next.mono_;
    return true;
  }
  if (next.width_ != width_ || next.height_ != height_ || next.mono_ != mono_) return false;
  try {
    raster::Difference combined = *difference_;
    combined.Combine(*next.difference_);
    *difference_ = std::move(combined);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

bool BitmapDifference::empty() const { return !difference_ || difference_->empty(); }

std::size_t BitmapDifference::StoredBytes() const { return difference_ ? difference_->StoredBytes() : 0; }

}  // namespace platform
