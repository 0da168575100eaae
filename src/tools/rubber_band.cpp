#include "tools/rubber_band.h"

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"

void DrawRubberBand(HDC dc, int left, int top, int right, int bottom, int oldRight, int oldBottom, bool draw,
                    bool erase) {
  const LOGBRUSH grey{BS_SOLID, RGB(0x80, 0x80, 0x80), 0};
  const platform::OwnedPen pen(ExtCreatePen(PS_COSMETIC | PS_DOT, 1, &grey, 0, nullptr));
  // Without its own pen the band would be drawn with the tool's.
  if (!pen) return;
  const platform::SelectionGuard penSelected(dc, pen.get());
  const platform::SelectionGuard brushSelected(dc, GetStockObject(NULL_BRUSH));
  const int previousMode = SetROP2(dc, R2_NOTXORPEN);
  if (erase) Rectangle(dc, left, top, oldRight, oldBottom);
  if (draw) Rectangle(dc, left, top, right, bottom);
  SetROP2(dc, previousMode);
}

std::optional<RECT> RubberBandDrag::Move(POINT point) {
  StrokeState& stroke = Stroke();
  DrawRubberBand(Layer(), stroke.downPoint.x, stroke.downPoint.y, point.x, point.y, stroke.lastPoint.x,
                 stroke.lastPoint.y, true, true);
  stroke.lastPoint = point;
  return std::nullopt;
}

void RubberBandDrag::EraseBand() {
  const StrokeState& stroke = Stroke();
  DrawRubberBand(Layer(), stroke.downPoint.x, stroke.downPoint.y, 0, 0, stroke.lastPoint.x,
                 stroke.lastPoint.y, false, true);
  editor_.RedrawWindow();
}
