#include "tools/selection_move_tool.h"

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/rubber_band.h"

bool SelectionMoveTool::PressRecordsHistory(POINT point) const {
  return !editor_.m_captured.Contains(point) && newRectangle_.PressRecordsHistory(point);
}

// From this press on the rectangle selection has the drag.
void SelectionMoveTool::Press(POINT point) {
  if (editor_.m_captured.Contains(point)) return;
  editor_.m_tools.mode = ToolMode::RectangleSelection;
  newRectangle_.Press(point);
}

// The captured pixels follow the pointer; where they were, the drawing layer gets
// back what the snapshot holds there (white, since the capture).
std::optional<RECT> SelectionMoveTool::Move(POINT point) {
  CapturedPixels& captured = editor_.m_captured;
  if (!captured.bitmap()) return std::nullopt;
  HDC layer = Layer();
  POINT& last = Stroke().lastPoint;
  editor_.m_surfaces.RestoreFromSnapshot(captured.area());
  captured.MoveBy(point.x - last.x, point.y - last.y);
  last = point;
  const platform::MemoryDC source(layer);
  if (!source) return std::nullopt;
  const platform::SelectionGuard selected(source.get(), captured.bitmap());
  const RECT& area = captured.area();
  BitBlt(layer, area.left, area.top, area.right - area.left, area.bottom - area.top, source.get(), 0, 0,
         SRCCOPY);
  return std::nullopt;
}

void SelectionMoveTool::Release(POINT) {
  const RECT& area = editor_.m_captured.area();
  DrawRubberBand(Layer(), area.left, area.top, area.right, area.bottom, 0, 0, true, false);
  editor_.RedrawWindow();
}

int SelectionMoveTool::Cursor() const { return kArrowSelectionCursor; }

void SelectionMoveTool::Abandon() { editor_.m_tools.mode = ToolMode::RectangleSelection; }
