// The selection box: a rectangle in window coordinates that the person drags over the
// picture and whose content can be saved on its own. It has either a positive width
// and height or none at all (0 x 0), so it is sized only through Place.
#pragma once

#include "platform/platform.h"

class SelectionBox {
 public:
  // A box of that size, or none when either side is below 1, centred in `client`
  // (each half truncated on its own).
  void Place(int width, int height, const RECT& client);
  // Dragged by (dx, dy); its size stays.
  void MoveBy(int dx, int dy) {
    x_ += dx;
    y_ += dy;
  }

  // A box exists once it has a width and a height.
  bool IsShown() const { return width_ > 0 && height_ > 0; }
  // Its rectangle in window coordinates.
  RECT WindowRect() const { return RECT{x_, y_, x_ + width_, y_ + height_}; }
  int width() const { return width_; }
  int height() const { return height_; }

 private:
  int x_ = 0;
  int y_ = 0;
  int width_ = 0;
  int height_ = 0;
};
