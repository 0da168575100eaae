// The pixels a rectangle selection captured and where they lie now (surface
// coordinates). They are a copy of the picture as it was shown, with a dotted border
// of their own; a drag of the held selection moves them, and the next capture
// replaces them.
#pragma once

#include <utility>

#include "platform/gdi_handles.h"
#include "platform/platform.h"

class CapturedPixels {
 public:
  // Takes `bitmap` (which may be missing: then nothing is captured) as the pixels
  // lying at `area`.
  void Take(platform::OwnedBitmap bitmap, const RECT& area) {
    bitmap_ = std::move(bitmap);
    area_ = area;
  }
  void MoveBy(int dx, int dy) {
    area_ = RECT{area_.left + dx, area_.top + dy, area_.right + dx, area_.bottom + dy};
  }
  void Release() { bitmap_.reset(); }

  HBITMAP bitmap() const { return bitmap_.get(); }
  const RECT& area() const { return area_; }
  // Whether a point lies on the pixels, their right and bottom edges included.
  bool Contains(POINT point) const {
    return point.x >= area_.left && point.x <= area_.right && point.y >= area_.top && point.y <= area_.bottom;
  }

 private:
  platform::OwnedBitmap bitmap_;
  RECT area_{0, 0, 0, 0};
};
