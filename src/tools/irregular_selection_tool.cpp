#include "tools/irregular_selection_tool.h"

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"

void IrregularSelectionTool::Release(POINT) {
  EraseBand();
  editor_.m_surfaces.CopyLayerToSnapshot();
}

int IrregularSelectionTool::Cursor() const { return kCrossHairCursor; }
