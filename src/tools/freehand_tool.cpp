#include "tools/freehand_tool.h"

#include <cstdlib>

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

void FreehandTool::Press(POINT point) {
  MoveToEx(Layer(), point.x, point.y, nullptr);
  LineTo(Layer(), point.x + 1, point.y);
}

// A pen's end reaches at most its width past the segment's end points.
std::optional<RECT> FreehandTool::Move(POINT point) {
  POINT from{0, 0};
  GetCurrentPositionEx(Layer(), &from);
  LineTo(Layer(), point.x, point.y);
  return PaintedArea(from, point, std::abs(static_cast<long long>(Width())) + 1);
}

void FreehandTool::Release(POINT) { editor_.m_surfaces.CopyLayerToSnapshot(); }

int FreehandTool::Cursor() const {
  switch (kind_) {
    case Kind::Pen:
      return kPencilCursor;
    case Kind::Brush:
      return kPaintBrushCursor;
    case Kind::Eraser:
      break;
  }
  return kEraserCursor;
}

void FreehandTool::ApplyColor() {
  if (kind_ != Kind::Eraser) editor_.RenewDrawingObjects();
}
