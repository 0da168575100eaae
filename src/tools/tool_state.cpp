#include "tools/tool_state.h"

#include <utility>

#include "platform/gdi_draw.h"

ShapeStyle ShapeStyleFrom(int style) {
  return style >= 1 && style <= 6 ? static_cast<ShapeStyle>(style) : ShapeStyle::Line;
}

DWORD PenStyleForSize(int size) {
  if (size == 1) return PS_COSMETIC | PS_SOLID;
  if (size < 2) return PS_GEOMETRIC | PS_ENDCAP_SQUARE;
  return PS_GEOMETRIC | PS_ENDCAP_ROUND | PS_JOIN_ROUND;
}

void ToolState::SelectPen(HDC layer, platform::OwnedPen pen) {
  PutBackPen();
  drawingPen_ = std::move(pen);
  drawingLayerPen_ = platform::SelectionGuard(layer, drawingPen_.get());
}

// The guard's selection moves into a temporary that puts the previous pen back as it
// goes; only then is the tools' pen, now selected nowhere, deleted.
void ToolState::PutBackPen() {
  drawingLayerPen_ = platform::SelectionGuard();
  drawingPen_.reset();
}

void ToolState::SelectBrush(HDC layer, platform::OwnedBrush brush) {
  PutBackBrush();
  drawingBrush_ = std::move(brush);
  drawingLayerBrush_ = platform::SelectionGuard(layer, drawingBrush_.get());
}

void ToolState::SelectStockBrush(HDC layer, int stockBrush) {
  PutBackBrush();
  drawingLayerBrush_ = platform::SelectionGuard(layer, GetStockObject(stockBrush));
}

void ToolState::PutBackBrush() {
  drawingLayerBrush_ = platform::SelectionGuard();
  drawingBrush_.reset();
}
