#include "tools/cut_tool.h"

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/composition_copy.h"
#include "tools/drag_area.h"

void CutTool::Release(POINT point) {
  EraseBand();
  const RECT spanned = SpannedRect(Stroke().downPoint, point);
  const CompositionCopy copy = CompositionCopy::Of(editor_, spanned);
  if (copy.bitmap) {
    const platform::SelectionGuard selected(copy.dc.get(), copy.bitmap.get());
    const ViewPlacement& view = editor_.m_view;
    StretchBlt(Layer(), view.imageRect().left, view.imageRect().top, view.displayedWidth(),
               view.displayedHeight(), copy.dc.get(), 0, 0, spanned.right - spanned.left,
               spanned.bottom - spanned.top, SRCCOPY);
    editor_.RedrawWindow();
  }
  editor_.m_surfaces.CopyLayerToSnapshot();
}

int CutTool::Cursor() const { return kArrowGridCursor; }
