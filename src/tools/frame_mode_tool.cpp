#include "tools/frame_mode_tool.h"

#include "editor/image_edit_wnd.h"

void FrameModeTool::Release(POINT) { editor_.m_surfaces.CopyLayerToSnapshot(); }
