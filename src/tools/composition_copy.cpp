#include "tools/composition_copy.h"

#include "editor/image_edit_wnd.h"

CompositionCopy CompositionCopy::Of(CImageEditWnd& editor, const RECT& area) {
  HDC composition = editor.m_surfaces.composition.dc();
  CompositionCopy copy{platform::MemoryDC(composition), platform::OwnedBitmap()};
  if (!copy.dc) return copy;
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  copy.bitmap = platform::OwnedBitmap(CreateCompatibleBitmap(composition, width, height));
  if (!copy.bitmap) return copy;
  editor.ComposeView(&area);
  const platform::SelectionGuard selected(copy.dc.get(), copy.bitmap.get());
  BitBlt(copy.dc.get(), 0, 0, width, height, composition, area.left, area.top, SRCCOPY);
  return copy;
}
