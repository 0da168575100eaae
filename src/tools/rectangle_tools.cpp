// The releases of the tools that work on the dragged rectangle of the picture as the
// person sees it (the composition buffer): the rectangle selection captures it, the
// cut enlarges it over the whole image, the mosaic pixelates it. A rectangle that
// spans no pixels, or memory that cannot be had, leaves the picture as it is.
#include <utility>

#include "editor/image_edit_wnd.h"
#include "pixels/mosaic.h"

namespace {

constexpr int kMosaicCell = 8;

// A part of the composition buffer copied into a bitmap of its own, which is selected
// nowhere, and a memory DC to draw it through. The DC, or the bitmap too, is missing
// when it could not be made.
struct CompositionCopy {
  platform::MemoryDC dc;
  platform::OwnedBitmap bitmap;
};

CompositionCopy CopyComposition(CImageEditWnd& editor, const RECT& area) {
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

}  // namespace

// The captured pixels carry a dotted border of their own. On the drawing layer the
// band, already erased by the release, is drawn once more, so the captured rectangle
// stays outlined until the selection moves; where the pixels came from, the snapshot
// turns white, which is what a move leaves behind.
void CImageEditWnd::CaptureSelection(POINT up) {
  const POINT down = m_tools.stroke.downPoint;
  const RECT spanned = SpannedRect(down, up);
  CompositionCopy copy = CopyComposition(*this, spanned);
  if (!copy.dc) return;
  m_selectionX = spanned.left;
  m_selectionY = spanned.top;
  m_selectionWidth = spanned.right - spanned.left;
  m_selectionHeight = spanned.bottom - spanned.top;
  m_selectionBitmap = std::move(copy.bitmap);
  if (!m_selectionBitmap) return;
  {
    const platform::SelectionGuard selected(copy.dc.get(), m_selectionBitmap.get());
    DrawRubberBand(copy.dc.get(), 0, 0, m_selectionWidth, m_selectionHeight, 0, 0, true, true);
  }
  DrawRubberBand(m_surfaces.drawingLayer.dc(), down.x, down.y, 0, 0, up.x, up.y, false, true);
  RedrawWindow();
  FillRect(m_surfaces.snapshotDC.get(), &spanned, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  m_tools.mode = ToolMode::RectangleSelectionHeld;
}

void CImageEditWnd::CutToWholeImage(POINT up) {
  const RECT spanned = SpannedRect(m_tools.stroke.downPoint, up);
  const CompositionCopy copy = CopyComposition(*this, spanned);
  if (!copy.bitmap) return;
  const platform::SelectionGuard selected(copy.dc.get(), copy.bitmap.get());
  StretchBlt(m_surfaces.drawingLayer.dc(), m_view.imageRect.left, m_view.imageRect.top, m_view.displayedWidth,
             m_view.displayedHeight, copy.dc.get(), 0, 0, spanned.right - spanned.left,
             spanned.bottom - spanned.top, SRCCOPY);
  RedrawWindow();
}

void CImageEditWnd::Pixelate(POINT up) {
  const RECT spanned = SpannedRect(m_tools.stroke.downPoint, up);
  const CompositionCopy copy = CopyComposition(*this, spanned);
  if (!copy.bitmap) return;
  PixelBuffer pixels = ReadSurfacePixels(copy.dc.get(), copy.bitmap.get());
  if (!pixels) return;
  PixelateCells(pixels.Whole(), kMosaicCell);
  WriteSurfacePixels(copy.dc.get(), copy.bitmap.get(), std::move(pixels));
  const platform::SelectionGuard selected(copy.dc.get(), copy.bitmap.get());
  BitBlt(m_surfaces.drawingLayer.dc(), spanned.left, spanned.top, spanned.right - spanned.left,
         spanned.bottom - spanned.top, copy.dc.get(), 0, 0, SRCCOPY);
  RedrawWindow();
}
