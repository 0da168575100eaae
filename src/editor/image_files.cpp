// The editor's image-file operations: loading the picture to edit and writing the
// edited picture (whole or under the selection box) as a bitmap file.
#include <cstdint>

#include "editor/clamped_int.h"
#include "editor/image_edit_wnd.h"
#include "imageio/bitmap_file_writer.h"
#include "imageio/image_loader.h"

namespace {

// The composition buffer's area (x, y, width, height) that the whole saved image
// covers.
RECT SavedImageArea(const CImageEditWnd& editor) {
  const ViewPlacement& view = editor.m_view;
  return editor.m_frame.Around(
      RECT{view.imageRect().left, view.imageRect().top, view.displayedWidth(), view.displayedHeight()});
}

// A scratch DC with a new bitmap compatible with `compatibleWith` selected into it.
struct ScratchBitmap {
  ScratchBitmap(HDC compatibleWith, int width, int height)
      : dc(compatibleWith),
        bitmap(dc ? CreateCompatibleBitmap(compatibleWith, width, height) : nullptr),
        selected(bitmap ? dc.get() : nullptr, bitmap.get()) {}
  bool ok() const { return dc && bitmap; }

  platform::MemoryDC dc;
  platform::OwnedBitmap bitmap;
  platform::SelectionGuard selected;
};

}  // namespace

void CImageEditWnd::SetImage(LPCSTR lpszFilePath) {
  if (!m_surfaces.imageSurface.dc()) return;
  m_surfaces.original.reset();
  // A failed load leaves the view as it was: the surfaces are not touched.
  m_surfaces.original =
      platform::OwnedBitmap(imageio::LoadImage(lpszFilePath, m_messages.LoadContext(m_hWnd)));
  if (!m_surfaces.original) return;
  BITMAP description{};
  if (!GetObjectA(m_surfaces.original.get(), sizeof description, &description)) return;
  EndDrag();  // the drag's layer and level are about to be replaced
  m_view.originalWidth = description.bmWidth;
  m_view.originalHeight = description.bmHeight;
  m_view.scalingAllowed = true;
  CreateDrawingLayer(m_view.originalWidth, m_view.originalHeight);
  // Without a requested width the picture is laid out at 100 % (a negative width is a
  // percentage).
  SetImageWidth(m_view.requestedImageWidth > 0 ? m_view.requestedImageWidth : -100);
  const Surface& layer = m_surfaces.drawingLayer;
  CommitHistoryLevel(layer.dc(), layer.width(), layer.height());
}

void CImageEditWnd::SaveEditedBitmap(LPCSTR lpszFilePath) {
  HDC composition = m_surfaces.composition.dc();
  if (!composition) return;
  CloseTextEntry();
  const RECT source = SavedImageArea(*this);  // left, top, width, height
  // A frame's offsets can put the area's far sides beyond int's reach.
  const RECT saved{source.left, source.top, ClampedInt(std::int64_t{source.left} + source.right),
                   ClampedInt(std::int64_t{source.top} + source.bottom)};
  ComposeView(&saved, true);
  const SIZE size = m_saveSize.Or(SIZE{source.right, source.bottom});
  const int width = size.cx;
  const int height = size.cy;
  const ScratchBitmap output(composition, width, height);
  if (!output.ok()) return;
  SetStretchBltMode(output.dc.get(), HALFTONE);
  StretchBlt(output.dc.get(), 0, 0, width, height, composition, source.left, source.top, source.right,
             source.bottom, SRCCOPY);
  imageio::WriteBitmapFile(lpszFilePath, output.bitmap.get(), m_messages.WriteContext(m_hWnd));
}

void CImageEditWnd::SaveSelectionBoxBitmap(LPCSTR lpcFilePath) {
  CloseTextEntry();
  HDC composition = m_surfaces.composition.dc();
  if (!composition || !m_selectionBox.IsShown()) return;
  const int width = m_selectionBox.width();
  const int height = m_selectionBox.height();
  const ScratchBitmap output(composition, width, height);
  if (!output.ok()) return;
  // The box keeps window coordinates; the picture under it on screen lies at the
  // box's position plus the scroll position in the composition buffer.
  const RECT under = m_view.ToSurface(m_selectionBox.WindowRect());
  ComposeView(&under, true);
  BitBlt(output.dc.get(), 0, 0, width, height, composition, under.left, under.top, SRCCOPY);
  imageio::WriteBitmapFile(lpcFilePath, output.bitmap.get(), m_messages.WriteContext(m_hWnd));
}

void CImageEditWnd::SetSaveEditedBitmapSize(int nWidth, int nHeight) { m_saveSize.Choose(nWidth, nHeight); }
