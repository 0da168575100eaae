#include "tools/bitmap_brush_tool.h"

#include <cstdlib>

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

void BitmapBrushTool::Press(POINT point) { StampAt(point); }

std::optional<RECT> BitmapBrushTool::Move(POINT point) {
  const int width = Width();
  POINT& last = Stroke().lastPoint;
  if (std::abs(last.x - point.x) <= width && std::abs(last.y - point.y) <= width) return RECT{0, 0, 0, 0};
  last = point;
  StampAt(point);
  const POINT corner = ToolCorner(point, width);
  return ClampedRect(corner.x, corner.y, static_cast<long long>(corner.x) + width,
                     static_cast<long long>(corner.y) + width);
}

void BitmapBrushTool::Release(POINT) {
  editor_.m_surfaces.CopyLayerToSnapshot();
  Stroke().lastPoint = POINT{0, 0};
}

int BitmapBrushTool::Cursor() const { return kArrowTiledSquareCursor; }

void BitmapBrushTool::ApplyColor() { editor_.RecolorBitmapBrush(editor_.m_tools.color); }

void BitmapBrushTool::StampBitmapBrush(HDC dc, int left, int top, int width, int height) {
  const ToolState& tools = editor_.m_tools;
  if (!tools.bitmapBrush) return;
  editor_.TransparentBlit(dc, tools.bitmapBrush.get(), left, top, width, height, tools.bitmapBrushKeyColor);
}

void BitmapBrushTool::StampAt(POINT pointer) {
  const int width = Width();
  const POINT corner = ToolCorner(pointer, width);
  StampBitmapBrush(Layer(), corner.x, corner.y, width, width);
}
