#include "editor/selection_box.h"

bool SelectionBox::IsShown() const { return width > 0 && height > 0; }

RECT SelectionBox::OnSurface(int hScroll, int vScroll) const {
  return RECT{x + hScroll, y + vScroll, x + hScroll + width, y + vScroll + height};
}
