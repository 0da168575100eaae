#include "editor/view_placement.h"

#include <algorithm>
#include <utility>

void ViewPlacement::SizeToScale() {
  displayedWidth_ = static_cast<int>(originalWidth * scale);
  displayedHeight_ = static_cast<int>(originalHeight * scale);
}

void ViewPlacement::CentreIn(int width, int height) {
  PlaceAt(width / 2 - displayedWidth_ / 2, height / 2 - displayedHeight_ / 2);
}

void ViewPlacement::PlaceAt(int left, int top) {
  imageRect_ = RECT{left, top, left + displayedWidth_, top + displayedHeight_};
}

void ViewPlacement::RestoreLayout(const ViewPlacement& recorded) {
  displayedWidth_ = recorded.displayedWidth_;
  displayedHeight_ = recorded.displayedHeight_;
  PlaceAt(recorded.imageRect_.left, recorded.imageRect_.top);
  viewWidth_ = recorded.viewWidth_;
  viewHeight_ = recorded.viewHeight_;
}

void ViewPlacement::TurnQuarter(bool counterClockwise, int width, int height) {
  const RECT before = imageRect_;
  std::swap(displayedWidth_, displayedHeight_);
  // A point (x, y) goes to (y, width - x) counter-clockwise and to (height - y, x)
  // clockwise.
  if (counterClockwise) {
    PlaceAt(before.top, width - before.right);
  } else {
    PlaceAt(height - before.bottom, before.left);
  }
}

void ViewPlacement::ShowBar(int bar) {
  (bar == SB_HORZ ? hScrollShown_ : vScrollShown_) = true;
  (bar == SB_HORZ ? hScrollPos_ : vScrollPos_) = 0;
}

void ViewPlacement::HideBar(int bar) {
  (bar == SB_HORZ ? hScrollShown_ : vScrollShown_) = false;
  (bar == SB_HORZ ? hScrollPos_ : vScrollPos_) = 0;
}

void ViewPlacement::ForgetScrolling() {
  HideBar(SB_HORZ);
  HideBar(SB_VERT);
  MeasureView(0, 0);
}

void ViewPlacement::MeasureView(int width, int height) {
  viewWidth_ = width;
  viewHeight_ = height;
}

int ViewPlacement::ScrollBy(int bar, int step) {
  const bool horizontal = bar == SB_HORZ;
  int& position = horizontal ? hScrollPos_ : vScrollPos_;
  const int limit = horizontal ? displayedWidth_ - viewWidth_ : displayedHeight_ - viewHeight_;
  position = std::min(std::max(position + step, 0), limit);
  return position;
}
