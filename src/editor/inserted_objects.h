// The inserted objects of the editor: how many of the five slots are live, their stacking
// order (the z-order list names the live slots, front first) and which object is
// dragged or selected. A history level keeps a copy of the same record. The count
// and the z-order must agree, so the record changes only through its operations.
#pragma once

#include <span>

#include "platform/types.h"

inline constexpr int kMaxInsertedObjects = 5;

class InsertedObjects {
 public:
  // Copies the live count, the z-order and the drag and selection state from
  // `other`: what a history level records and gives back.
  void CopyFrom(const InsertedObjects& other);
  // The live slots, front first.
  std::span<const int> FrontToBack() const;
  // The selected slot, -1 for none.
  int selected() const { return selected_; }

  // What the next inserted object is drawn with: pixels of the transparent colour are
  // left out, and a transparency of 1 to 99 blends it with the picture.
  COLORREF storedTransparentColor = 0;
  int storedTransparency = 0;

 private:
  int count_ = 0;
  int dragged_ = -1;
  int dragX_ = -1;
  int dragY_ = -1;
  int selected_ = -1;
  int zOrder_[kMaxInsertedObjects + 1] = {0, 0, 0, 0, 0, 0};
};
