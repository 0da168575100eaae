#include "tools/mosaic_tool.h"

#include <utility>

#include "editor/image_edit_wnd.h"
#include "pixels/mosaic.h"
#include "resources/cursor_table.h"
#include "tools/composition_copy.h"
#include "tools/drag_area.h"

namespace {

constexpr int kMosaicCell = 8;

}  // namespace

void MosaicTool::Release(POINT point) {
  EraseBand();
  Pixelate(point);
  editor_.m_surfaces.CopyLayerToSnapshot();
}

int MosaicTool::Cursor() const { return kArrowGridCursor; }

// Pixels that cannot be read leave the picture as it is.
void MosaicTool::Pixelate(POINT up) {
  const RECT spanned = SpannedRect(Stroke().downPoint, up);
  const CompositionCopy copy = CompositionCopy::Of(editor_, spanned);
  if (!copy.bitmap) return;
  PixelBuffer pixels = editor_.ReadSurfacePixels(copy.dc.get(), copy.bitmap.get());
  if (!pixels) return;
  PixelateCells(pixels.Whole(), kMosaicCell);
  editor_.WriteSurfacePixels(copy.dc.get(), copy.bitmap.get(), std::move(pixels));
  const platform::SelectionGuard selected(copy.dc.get(), copy.bitmap.get());
  BitBlt(Layer(), spanned.left, spanned.top, spanned.right - spanned.left, spanned.bottom - spanned.top,
         copy.dc.get(), 0, 0, SRCCOPY);
  editor_.RedrawWindow();
}
