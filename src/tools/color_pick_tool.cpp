#include "tools/color_pick_tool.h"

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/color_string.h"

void ColorPickTool::Press(POINT point) { picked_ = editor_.ShownColorAt(point); }

void ColorPickTool::Release(POINT) {
  ToolState& tools = editor_.m_tools;
  tools.mode = tools.savedMode;
  tools.savedMode = ToolMode::None;
  editor_.FireColorSelected(ColorString(picked_));
}

int ColorPickTool::Cursor() const { return kEyedropperCursor; }
