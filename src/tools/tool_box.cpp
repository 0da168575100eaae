#include "tools/tool_box.h"

#include "tools/bitmap_brush_tool.h"
#include "tools/color_pick_tool.h"
#include "tools/cut_tool.h"
#include "tools/fill_tool.h"
#include "tools/frame_mode_tool.h"
#include "tools/freehand_tool.h"
#include "tools/irregular_selection_tool.h"
#include "tools/mosaic_tool.h"
#include "tools/rectangle_capture_tool.h"
#include "tools/selection_move_tool.h"
#include "tools/shape_tool.h"
#include "tools/text_box_tool.h"

ToolBox::ToolBox(CImageEditWnd& editor) {
  Register<ColorPickTool>({ToolMode::ColorPick}, editor);
  Register<FillTool>({ToolMode::Fill}, editor);
  Register<FreehandTool>({ToolMode::Eraser}, editor, FreehandTool::Kind::Eraser);
  Register<FreehandTool>({ToolMode::Pen}, editor, FreehandTool::Kind::Pen);
  Register<FreehandTool>({ToolMode::Brush}, editor, FreehandTool::Kind::Brush);
  airbrush_ = &Register<AirbrushTool>({ToolMode::Airbrush}, editor);
  Register<BitmapBrushTool>({ToolMode::BitmapBrush}, editor);
  Register<ShapeTool>({ToolMode::Shape}, editor);
  curve_ = &Register<CurveTool>({ToolMode::Shape, ShapeStyle::Curve}, editor);
  Register<TextBoxTool>({ToolMode::Text}, editor);
  Interaction& rectangle = Register<RectangleCaptureTool>({ToolMode::RectangleSelection}, editor);
  Register<IrregularSelectionTool>({ToolMode::IrregularSelection}, editor);
  Register<SelectionMoveTool>({ToolMode::RectangleSelectionHeld}, editor, rectangle);
  Register<CutTool>({ToolMode::Cut}, editor);
  Register<MosaicTool>({ToolMode::Mosaic}, editor);
  Register<FrameModeTool>({ToolMode::Frame}, editor);
}

Interaction* ToolBox::For(ToolMode mode, ShapeStyle style) const {
  auto found = tools_.find(Key{mode, style});
  if (found == tools_.end()) found = tools_.find(Key{mode});
  return found == tools_.end() ? nullptr : found->second.get();
}
