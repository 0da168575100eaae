#include "editor/selection_box.h"

void SelectionBox::Place(int width, int height, const RECT& client) {
  const bool shown = width > 0 && height > 0;
  width_ = shown ? width : 0;
  height_ = shown ? height : 0;
  x_ = client.right / 2 - width_ / 2;
  y_ = client.bottom / 2 - height_ / 2;
}
