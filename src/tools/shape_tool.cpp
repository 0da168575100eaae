#include "tools/shape_tool.h"

#include <algorithm>

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

void ShapeTool::Press(POINT point) {
  if (editor_.m_tools.shapeStyle != ShapeStyle::Line) return;
  MoveToEx(Layer(), point.x, point.y, nullptr);
  LineTo(Layer(), point.x + 1, point.y);
  Stroke().lastPoint.x += 1;
}

// The previous preview lay within the pen's width around the rectangle from the press
// to the last point.
std::optional<RECT> ShapeTool::Move(POINT point) {
  StrokeState& stroke = Stroke();
  const POINT down = stroke.downPoint;
  const POINT last = stroke.lastPoint;
  const long long w = Width();
  editor_.m_surfaces.RestoreFromSnapshot(
      ClampedRect(std::min(down.x, last.x) - w, std::min(down.y, last.y) - w, std::max(down.x, last.x) + w,
                  std::max(down.y, last.y) + w));
  stroke.lastPoint = point;
  HDC layer = Layer();
  switch (editor_.m_tools.shapeStyle) {
    case ShapeStyle::Line:
      MoveToEx(layer, down.x, down.y, nullptr);
      LineTo(layer, point.x, point.y);
      break;
    case ShapeStyle::Rectangle:
    case ShapeStyle::FilledRectangle:
      Rectangle(layer, down.x, down.y, point.x, point.y);
      break;
    case ShapeStyle::Ellipse:
    case ShapeStyle::FilledEllipse:
      Ellipse(layer, down.x, down.y, point.x, point.y);
      break;
    case ShapeStyle::None:
    case ShapeStyle::Curve:
      break;
  }
  return std::nullopt;
}

void ShapeTool::Release(POINT) { editor_.m_surfaces.CopyLayerToSnapshot(); }

int ShapeTool::Cursor() const {
  switch (editor_.m_tools.shapeStyle) {
    case ShapeStyle::Line:
      return kArrowLineCursor;
    case ShapeStyle::Rectangle:
    case ShapeStyle::FilledRectangle:
      return kArrowRectangleCursor;
    case ShapeStyle::Ellipse:
    case ShapeStyle::FilledEllipse:
      return kArrowEllipseCursor;
    case ShapeStyle::None:
    case ShapeStyle::Curve:
      break;
  }
  return kSystemArrowCursor;
}

void ShapeTool::ApplyColor() { editor_.RenewDrawingObjects(); }
