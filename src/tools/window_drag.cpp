#include "tools/window_drag.h"

#include "editor/image_edit_wnd.h"

void WindowDrag::ShowCursorOf(int resourceId) const {
  if (HCURSOR cursor = editor_.m_shell.Cursor(resourceId)) SetCursor(cursor);
}
