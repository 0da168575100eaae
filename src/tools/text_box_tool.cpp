#include "tools/text_box_tool.h"

#include <cstdlib>

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

void TextBoxTool::Release(POINT point) {
  EraseBand();
  const POINT down = Stroke().downPoint;
  if (!Stroke().releaseClosedText || (std::abs(down.x - point.x) >= 31 && std::abs(down.y - point.y) >= 16)) {
    OpenTextBox(down, point);
  }
  editor_.m_surfaces.CopyLayerToSnapshot();
}

int TextBoxTool::Cursor() const { return kArrowTextCursor; }

// The box keeps window coordinates.
void TextBoxTool::OpenTextBox(POINT down, POINT up) {
  const RECT spanned = SpannedRect(down, up);
  const int width = spanned.right - spanned.left < 31 ? 30 : spanned.right - spanned.left;
  const int height = spanned.bottom - spanned.top < 16 ? 15 : spanned.bottom - spanned.top;
  editor_.m_textEntry.Open(
      editor_.m_view.ToWindow(RECT{spanned.left, spanned.top, spanned.left + width, spanned.top + height}));
}
