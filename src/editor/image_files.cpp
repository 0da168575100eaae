// The editor's image-file operations: loading the picture to edit and writing the
// edited picture (whole or under the selection box) as a bitmap file.
#include "editor/image_edit_wnd.h"
#include "imageio/bitmap_file_writer.h"
#include "imageio/image_loader.h"

namespace {

imageio::LoadContext LoadContextOf(const CImageEditWnd& editor) {
  return {editor.m_hWnd, editor.m_verbose, editor.m_userLanguage};
}

imageio::WriteContext WriteContextOf(const CImageEditWnd& editor) {
  return {editor.m_hWnd, editor.m_verbose, editor.m_userLanguage};
}

// The composition buffer's area (x, y, width, height) that the whole saved image
// covers: the image rectangle, widened to take in the frame when there is one.
RECT SavedImageArea(const CImageEditWnd& editor) {
  RECT area{editor.m_imageRect.left, editor.m_imageRect.top, editor.m_displayedWidth,
            editor.m_displayedHeight};
  if (editor.m_framePresent) {
    const FramePiece& right = editor.m_frame[0];
    const FramePiece& top = editor.m_frame[2];
    const FramePiece& left = editor.m_frame[4];
    const FramePiece& bottom = editor.m_frame[6];
    area.left += left.offset - left.width;
    area.top += top.offset - top.height;
    area.right += (right.width - right.offset) + (left.width - left.offset);
    area.bottom += (bottom.height - bottom.offset) + (top.height - top.offset);
  }
  return area;
}

// A scratch DC with a new bitmap compatible with the composition buffer selected
// into it; both are released by the destructor.
class ScratchBitmap {
 public:
  ScratchBitmap(HDC compatibleWith, int width, int height) {
    dc_ = CreateCompatibleDC(compatibleWith);
    if (!dc_) return;
    bitmap_ = CreateCompatibleBitmap(compatibleWith, width, height);
    if (bitmap_) previous_ = SelectObject(dc_, bitmap_);
  }
  ~ScratchBitmap() {
    if (previous_) SelectObject(dc_, previous_);
    if (bitmap_) DeleteObject(bitmap_);
    if (dc_) DeleteDC(dc_);
  }
  ScratchBitmap(const ScratchBitmap&) = delete;
  ScratchBitmap& operator=(const ScratchBitmap&) = delete;

  bool ok() const { return dc_ && bitmap_; }
  HDC dc() const { return dc_; }
  HBITMAP bitmap() const { return bitmap_; }

 private:
  HDC dc_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ previous_ = nullptr;
};

}  // namespace

void CImageEditWnd::SetImage(LPCSTR lpszFilePath) {
  if (!m_imageSurface.dc) return;
  if (m_originalImage) {
    DeleteObject(m_originalImage);
    m_originalImage = nullptr;
  }
  // A failed load leaves the view as it was: the surfaces are not touched.
  m_originalImage = imageio::LoadImage(lpszFilePath, LoadContextOf(*this));
  if (!m_originalImage) return;
  BITMAP description{};
  if (!GetObjectA(m_originalImage, sizeof description, &description)) return;
  m_originalWidth = description.bmWidth;
  m_originalHeight = description.bmHeight;
  m_scalingAllowed = true;
  CreateDrawingLayer(m_originalWidth, m_originalHeight);
  SetImageWidth(m_requestedImageWidth > 0 ? m_requestedImageWidth : -100);
  CommitHistoryLevel(m_drawingLayer.dc, m_drawingLayer.width(), m_drawingLayer.height());
}

void CImageEditWnd::SaveEditedBitmap(LPCSTR lpszFilePath) {
  if (!m_composition.dc) return;
  // Text entry is closed here (before composing) once it exists in the editor.
  ComposeView();
  const RECT source = SavedImageArea(*this);  // left, top, width, height
  const int width = m_saveWidth > 0 ? m_saveWidth : source.right;
  const int height = m_saveHeight > 0 ? m_saveHeight : source.bottom;
  ScratchBitmap output(m_composition.dc, width, height);
  if (!output.ok()) return;
  SetStretchBltMode(output.dc(), HALFTONE);
  StretchBlt(output.dc(), 0, 0, width, height, m_composition.dc, source.left, source.top, source.right,
             source.bottom, SRCCOPY);
  imageio::WriteBitmapFile(lpszFilePath, output.bitmap(), WriteContextOf(*this));
}

void CImageEditWnd::SaveSelectionBoxBitmap(LPCSTR lpcFilePath) {
  // Text entry is closed here (before anything else) once it exists in the editor.
  if (!m_composition.dc || m_selectionBoxWidth <= 0 || m_selectionBoxHeight <= 0) return;
  ScratchBitmap output(m_composition.dc, m_selectionBoxWidth, m_selectionBoxHeight);
  if (!output.ok()) return;
  ComposeView();
  // The box keeps window coordinates; the picture under it on screen lies at the
  // box's position plus the scroll position in the composition buffer.
  BitBlt(output.dc(), 0, 0, m_selectionBoxWidth, m_selectionBoxHeight, m_composition.dc,
         m_selectionBoxX + m_hScrollPos, m_selectionBoxY + m_vScrollPos, SRCCOPY);
  imageio::WriteBitmapFile(lpcFilePath, output.bitmap(), WriteContextOf(*this));
}

void CImageEditWnd::SetSaveEditedBitmapSize(int nWidth, int nHeight) {
  if (nWidth <= 0 || nHeight <= 0) return;
  m_saveWidth = nWidth;
  m_saveHeight = nHeight;
}
