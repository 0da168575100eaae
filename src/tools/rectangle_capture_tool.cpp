#include "tools/rectangle_capture_tool.h"

#include <utility>

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/composition_copy.h"
#include "tools/drag_area.h"

void RectangleCaptureTool::Release(POINT point) {
  EraseBand();
  editor_.m_surfaces.CopyLayerToSnapshot();
  Capture(point);
}

int RectangleCaptureTool::Cursor() const { return kArrowSelectionCursor; }

// The captured pixels carry a dotted border of their own. On the drawing layer the
// band, already erased by the release, is drawn once more, so the captured rectangle
// stays outlined until the selection moves.
void RectangleCaptureTool::Capture(POINT up) {
  const POINT down = Stroke().downPoint;
  const RECT spanned = SpannedRect(down, up);
  CompositionCopy copy = CompositionCopy::Of(editor_, spanned);
  if (!copy.dc) return;
  CapturedPixels& captured = editor_.m_captured;
  captured.Take(std::move(copy.bitmap), spanned);
  if (!captured.bitmap()) return;
  {
    const platform::SelectionGuard selected(copy.dc.get(), captured.bitmap());
    DrawRubberBand(copy.dc.get(), 0, 0, spanned.right - spanned.left, spanned.bottom - spanned.top, 0, 0,
                   true, true);
  }
  DrawRubberBand(Layer(), down.x, down.y, 0, 0, up.x, up.y, false, true);
  editor_.RedrawWindow();
  FillRect(editor_.m_surfaces.snapshotDC.get(), &spanned, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  editor_.m_tools.mode = ToolMode::RectangleSelectionHeld;
}
