#include "tools/selection_box_drag.h"

#include <cstdint>

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

namespace {

// Whether a box that starts at `start` and is `length` long keeps its centre (the
// half truncated) strictly between `low` and `high` after moving by `step`.
bool CentreStaysInside(int start, int length, int step, LONG low, LONG high) {
  const std::int64_t centre = std::int64_t{start} + length / 2 + step;
  return centre > low && centre < high;
}

}  // namespace

bool SelectionBoxDrag::Takes(POINT window) const {
  const RECT box = editor_.m_selectionBox.WindowRect();
  return PtInRect(&box, window) == TRUE;
}

void SelectionBoxDrag::Press(POINT window) {
  last_ = window;
  ShowCursorOf(kClosedHandMoveCursor);
}

// The image rectangle is a surface rectangle; it is compared with window coordinates
// only on an axis the window shows whole, where the two coincide.
RECT SelectionBoxDrag::Move(POINT window) {
  SelectionBox& box = editor_.m_selectionBox;
  const ViewPlacement& view = editor_.m_view;
  const RECT before = box.WindowRect();
  RECT client{0, 0, 0, 0};
  editor_.GetClientRect(&client);
  const RECT& image = view.imageRect();
  const RECT& boundsX = client.right >= view.displayedWidth() ? image : client;
  const RECT& boundsY = client.bottom >= view.displayedHeight() ? image : client;

  int dx = window.x - last_.x;
  int dy = window.y - last_.y;
  if (CentreStaysInside(before.left, box.width(), dx, boundsX.left, boundsX.right)) {
    last_.x = window.x;
  } else {
    dx = 0;
  }
  if (CentreStaysInside(before.top, box.height(), dy, boundsY.top, boundsY.bottom)) {
    last_.y = window.y;
  } else {
    dy = 0;
  }
  if (dx == 0 && dy == 0) return RECT{};
  box.MoveBy(dx, dy);
  return BoundingRect(before, box.WindowRect());
}

void SelectionBoxDrag::Release() { ShowCursorOf(kOpenHandMoveCursor); }
