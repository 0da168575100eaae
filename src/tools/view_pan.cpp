#include "tools/view_pan.h"

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"

bool ViewPan::Takes(POINT) const { return editor_.m_view.hScrollShown() || editor_.m_view.vScrollShown(); }

void ViewPan::Press(POINT window) {
  last_ = window;
  ShowCursorOf(kClosedHandPanCursor);
}

// An axis the pointer did not move along is not scrolled at all: a scroll repaints
// the whole window even when it stays where it is. The position travels as a scroll
// bar sends it, an unsigned word of the message.
RECT ViewPan::Move(POINT window) {
  const ViewPlacement& view = editor_.m_view;
  if (view.hScrollShown() && window.x != last_.x) {
    editor_.OnHScroll(SB_THUMBPOSITION, static_cast<UINT>(view.hScrollPos() + last_.x - window.x), nullptr);
  }
  if (view.vScrollShown() && window.y != last_.y) {
    editor_.OnVScroll(SB_THUMBPOSITION, static_cast<UINT>(view.vScrollPos() + last_.y - window.y), nullptr);
  }
  last_ = window;
  return RECT{};
}

void ViewPan::Release() {
  ShowCursorOf(kOpenHandPanCursor);
  editor_.RedrawWindow();
}
