#include "editor/view_placement.h"

#include <algorithm>

void ViewPlacement::SizeToScale() {
  displayedWidth = static_cast<int>(originalWidth * scale);
  displayedHeight = static_cast<int>(originalHeight * scale);
}

void ViewPlacement::CentreIn(int width, int height) {
  PlaceAt(width / 2 - displayedWidth / 2, height / 2 - displayedHeight / 2);
}

void ViewPlacement::PlaceAt(int left, int top) {
  imageRect = RECT{left, top, left + displayedWidth, top + displayedHeight};
}

void ViewPlacement::RestoreLayout(const ViewPlacement& recorded) {
  displayedWidth = recorded.displayedWidth;
  displayedHeight = recorded.displayedHeight;
  PlaceAt(recorded.imageRect.left, recorded.imageRect.top);
  viewWidth = recorded.viewWidth;
  viewHeight = recorded.viewHeight;
}

int ViewPlacement::ScrollBy(int bar, int step) {
  const bool horizontal = bar == SB_HORZ;
  int& position = horizontal ? hScrollPos : vScrollPos;
  const int limit = horizontal ? displayedWidth - viewWidth : displayedHeight - viewHeight;
  position = std::min(std::max(position + step, 0), limit);
  return position;
}
