#include "tools/tool_state.h"

void ToolState::AbandonUnfinished() {
  if (mode == ToolMode::Shape && shapeStyle == ShapeStyle::Curve) stroke.curveStage = 0;
  if (mode == ToolMode::RectangleSelectionHeld) mode = ToolMode::RectangleSelection;
}
