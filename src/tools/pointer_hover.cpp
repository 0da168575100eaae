#include "tools/pointer_hover.h"

#include "resources/cursor_table.h"
#include "tools/interaction.h"

void PointerHover::Update(POINT window, const SelectionBox& box) {
  const RECT boxRect = box.WindowRect();
  overBox = PtInRect(&boxRect, window) == TRUE;
  if (overBox) return;
  overBody = false;
  overGrip = false;
}

int PointerHover::Cursor(bool scrolls) const {
  if (overBox || overBody) return kOpenHandMoveCursor;
  if (overGrip) return kFourWayArrowsCursor;
  return scrolls ? kOpenHandPanCursor : kWindowClassCursor;
}
