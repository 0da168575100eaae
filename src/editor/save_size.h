// The size a whole saved picture is written at: a chosen width and height, both
// positive, or none (the displayed size). A choice with a side below 1 is ignored, so
// the size changes only through Choose.
#pragma once

#include "platform/platform.h"

class SaveSize {
 public:
  void Choose(int width, int height) {
    if (width <= 0 || height <= 0) return;
    width_ = width;
    height_ = height;
  }
  // The chosen size, or `displayed` when none was chosen.
  SIZE Or(SIZE displayed) const {
    return SIZE{width_ > 0 ? width_ : displayed.cx, height_ > 0 ? height_ : displayed.cy};
  }

 private:
  int width_ = 0;
  int height_ = 0;
};
