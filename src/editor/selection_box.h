// The selection box: a rectangle in window coordinates that the user drags over the
// picture and whose content can be saved on its own.
#pragma once

#include "platform/platform.h"

struct SelectionBox {
  // A box exists once it has a width and a height.
  bool IsShown() const;
  // The part of the composition buffer under the box when the view is scrolled to
  // (hScroll, vScroll): window coordinates plus the scroll position.
  RECT OnSurface(int hScroll, int vScroll) const;

  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  bool dragging = false;
  POINT lastPoint{0, 0};
  bool overBox = false;
};
