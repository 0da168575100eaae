#include "tools/pointer_hover.h"

#include "resources/cursor_table.h"
#include "tools/interaction.h"

void PointerHover::Update(POINT window, const SelectionBox& box, const InsertedObjects& objects) {
  const RECT boxRect = box.WindowRect();
  overBox = PtInRect(&boxRect, window) == TRUE;
  if (overBox) return;
  const int slot = objects.HitTest(window);
  overGrip = slot >= 0 && objects.Object(slot).GripContains(window);
  overBody = slot >= 0 && !overGrip;
}

int PointerHover::Cursor(bool scrolls) const {
  if (overBox || overBody) return kOpenHandMoveCursor;
  if (overGrip) return kFourWayArrowsCursor;
  return scrolls ? kOpenHandPanCursor : kWindowClassCursor;
}
