#include "tools/curve_tool.h"

#include <algorithm>
#include <iterator>

#include "editor/image_edit_wnd.h"
#include "platform/gdi_draw.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

bool CurveTool::PressRecordsHistory(POINT) const { return stage_ == 0; }

// The first press places the whole curve at one point; the second and third place
// its control points.
void CurveTool::Press(POINT point) {
  if (stage_ == 0) {
    std::fill(std::begin(points_), std::end(points_), point);
    return;
  }
  editor_.m_surfaces.RestoreFromSnapshot(CurveArea(0));
  points_[stage_] = point;
  PolyBezier(Layer(), points_, 4);
}

// On a drag the curve is restored one pixel wider and taller than on a press.
std::optional<RECT> CurveTool::Move(POINT point) {
  editor_.m_surfaces.RestoreFromSnapshot(CurveArea(1));
  Stroke().lastPoint = point;
  if (stage_ == 0) {
    std::fill(std::begin(points_) + 1, std::end(points_), point);
  } else {
    points_[stage_] = point;
  }
  PolyBezier(Layer(), points_, 4);
  return std::nullopt;
}

void CurveTool::Release(POINT) {
  if (stage_ != 2) {
    ++stage_;
    return;
  }
  editor_.m_surfaces.CopyLayerToSnapshot();
  std::fill(std::begin(points_), std::end(points_), POINT{0, 0});
  stage_ = 0;
}

int CurveTool::Cursor() const { return kArrowCurveCursor; }

void CurveTool::ApplyColor() { editor_.RenewDrawingObjects(); }

RECT CurveTool::CurveArea(int grow) const {
  const auto [minX, maxX] = std::minmax({points_[0].x, points_[1].x, points_[2].x, points_[3].x});
  const auto [minY, maxY] = std::minmax({points_[0].y, points_[1].y, points_[2].y, points_[3].y});
  const long long width = Width();
  return ClampedRect(minX - width, minY - width, maxX + 2 * width + grow, maxY + 2 * width + grow);
}
