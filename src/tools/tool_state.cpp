#include "tools/tool_state.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/gdi_draw.h"
#include "resources/cursor_table.h"

ShapeStyle ShapeStyleFrom(int style) {
  return style >= 1 && style <= 6 ? static_cast<ShapeStyle>(style) : ShapeStyle::Line;
}

DWORD PenStyleForSize(int size) {
  if (size == 1) return PS_COSMETIC | PS_SOLID;
  if (size < 2) return PS_GEOMETRIC | PS_ENDCAP_SQUARE;
  return PS_GEOMETRIC | PS_ENDCAP_ROUND | PS_JOIN_ROUND;
}

// r * r * 3.14 truncated, over the density. Worked in 64 bits: the diameter is
// whatever the host set, and a radius near 2^30 would overflow 32-bit arithmetic.
long long SprayTries(int radius, int density) {
  if (density <= 0) return 0;
  const double area = static_cast<double>(radius) * radius * 3.14;
  const long long tries = static_cast<long long>(std::min(area, 1e18)) / density;
  return std::min(tries, kMaxSprayTries);
}

RECT SpannedRect(POINT a, POINT b) {
  return RECT{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

namespace {

// Areas are worked in 64 bits, since the pen width is whatever the host set (up to
// 2^31), and cut to GDI's device space, beyond which nothing is drawn anyway; their
// sides then still fit an int.
RECT ClampedRect(long long left, long long top, long long right, long long bottom) {
  static constexpr long long kDeviceSpace = 1LL << 27;
  const auto clamp = [](long long v) {
    return static_cast<LONG>(std::clamp(v, -kDeviceSpace, kDeviceSpace));
  };
  return RECT{clamp(left), clamp(top), clamp(right), clamp(bottom)};
}

}  // namespace

RECT PaintedArea(POINT a, POINT b, long long margin) {
  return ClampedRect(std::min(a.x, b.x) - margin, std::min(a.y, b.y) - margin,
                     std::max(a.x, b.x) + margin + 1, std::max(a.y, b.y) + margin + 1);
}

RECT StrokeState::ShapePreviewArea(int width) const {
  const long long w = width;
  return ClampedRect(std::min(downPoint.x, lastPoint.x) - w, std::min(downPoint.y, lastPoint.y) - w,
                     std::max(downPoint.x, lastPoint.x) + w, std::max(downPoint.y, lastPoint.y) + w);
}

RECT StrokeState::CurveArea(int width, int grow) const {
  const auto [minX, maxX] =
      std::minmax({curvePoints[0].x, curvePoints[1].x, curvePoints[2].x, curvePoints[3].x});
  const auto [minY, maxY] =
      std::minmax({curvePoints[0].y, curvePoints[1].y, curvePoints[2].y, curvePoints[3].y});
  return ClampedRect(static_cast<long long>(minX) - width, static_cast<long long>(minY) - width,
                     maxX + 2LL * width + grow, maxY + 2LL * width + grow);
}

void ToolState::AbandonUnfinished() {
  if (DrawingCurve()) stroke.curveStage = 0;
  if (mode == ToolMode::RectangleSelectionHeld) mode = ToolMode::RectangleSelection;
}

ToolMode ToolState::ModeAfterColorPick() const {
  const bool painting = mode >= ToolMode::Fill && mode <= ToolMode::Shape;
  return painting ? mode : ToolMode::Pen;
}

bool ToolState::PressCommitsHistory() const {
  if (mode == ToolMode::ColorPick || mode == ToolMode::RectangleSelectionHeld) return false;
  return !DrawingCurve() || stroke.curveStage == 0;
}

int ToolState::CursorId() const {
  switch (mode) {
    case ToolMode::None:
      return kWindowClassCursor;
    case ToolMode::ColorPick:
      return kEyedropperCursor;
    case ToolMode::Fill:
      return kPaintBucketCursor;
    case ToolMode::Eraser:
      return kEraserCursor;
    case ToolMode::Pen:
      return kPencilCursor;
    case ToolMode::Brush:
      return kPaintBrushCursor;
    case ToolMode::Airbrush:
      return kArrowSprayCursor;
    case ToolMode::BitmapBrush:
      return kArrowTiledSquareCursor;
    case ToolMode::Shape:
      switch (shapeStyle) {
        case ShapeStyle::Line:
          return kArrowLineCursor;
        case ShapeStyle::Curve:
          return kArrowCurveCursor;
        case ShapeStyle::Rectangle:
        case ShapeStyle::FilledRectangle:
          return kArrowRectangleCursor;
        case ShapeStyle::Ellipse:
        case ShapeStyle::FilledEllipse:
          return kArrowEllipseCursor;
        case ShapeStyle::None:
          break;
      }
      break;
    case ToolMode::Text:
      return kArrowTextCursor;
    case ToolMode::RectangleSelection:
    case ToolMode::RectangleSelectionHeld:
      return kArrowSelectionCursor;
    case ToolMode::IrregularSelection:
      return kCrossHairCursor;
    case ToolMode::Cut:
    case ToolMode::Mosaic:
      return kArrowGridCursor;
    case ToolMode::Frame:
      break;
  }
  return kSystemArrowCursor;
}

RECT ToolState::SprayArea(POINT pointer) const {
  const POINT centre = ToolCorner(pointer);
  return PaintedArea(centre, centre, std::abs(static_cast<long long>(toolWidth / 2)));
}

RECT ToolState::StampArea(POINT pointer) const {
  const POINT corner = ToolCorner(pointer);
  return ClampedRect(corner.x, corner.y, static_cast<long long>(corner.x) + toolWidth,
                     static_cast<long long>(corner.y) + toolWidth);
}

void ToolState::SelectPen(HDC layer, platform::OwnedPen pen) {
  PutBackPen();
  drawingPen = std::move(pen);
  drawingLayerPen = platform::SelectionGuard(layer, drawingPen.get());
}

// The guard's selection moves into a temporary that puts the previous pen back as it
// goes; only then is the tools' pen, now selected nowhere, deleted.
void ToolState::PutBackPen() {
  drawingLayerPen = platform::SelectionGuard();
  drawingPen.reset();
}

void ToolState::SelectBrush(HDC layer, platform::OwnedBrush brush) {
  PutBackBrush();
  drawingBrush = std::move(brush);
  drawingLayerBrush = platform::SelectionGuard(layer, drawingBrush.get());
}

void ToolState::SelectStockBrush(HDC layer, int stockBrush) {
  PutBackBrush();
  drawingLayerBrush = platform::SelectionGuard(layer, GetStockObject(stockBrush));
}

void ToolState::PutBackBrush() {
  drawingLayerBrush = platform::SelectionGuard();
  drawingBrush.reset();
}
