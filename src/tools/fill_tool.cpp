#include "tools/fill_tool.h"

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"
#include "resources/cursor_table.h"

void FillTool::Press(POINT point) {
  const COLORREF seen = editor_.ShownColorAt(point);
  ExtFloodFill(Layer(), point.x, point.y, seen, FLOODFILLSURFACE);
}

void FillTool::Release(POINT) { editor_.m_surfaces.CopyLayerToSnapshot(); }

int FillTool::Cursor() const { return kPaintBucketCursor; }

void FillTool::ApplyColor() { editor_.FillWithSelectedColor(); }
