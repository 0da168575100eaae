// How things are laid over the picture: the decorative frame, drawn around the image
// rectangle into every composition, and the texture setting.
#include "editor/image_edit_wnd.h"

// A border piece is only worth showing once the whole border is there, so until
// then nothing is repainted or recorded; the overlay shows at once.
void CImageEditWnd::SetFrame(int nOrientation, LPCSTR lpszFilePath, int nOffset, int nTransparentColor) {
  CloseTextEntry();
  const FrameUpdate update = m_frame.SetPiece(nOrientation, lpszFilePath, nOffset, nTransparentColor,
                                              m_messages.LoadContext(m_hWnd));
  if (update != FrameUpdate::Done) return;
  if (m_frame.present()) ChooseTool(ToolMode::Frame);
  RedrawWindow();
  CommitHistoryLevel(nullptr, 0, 0);
}

void CImageEditWnd::DrawFrame(HDC target, const RECT& area) {
  m_frame.Draw(target, m_view.imageRect(), area,
               [this](HDC keyedTarget, HBITMAP bitmap, const RECT& part, POINT from, COLORREF key) {
                 TransparentBlit(keyedTarget, bitmap, part.left, part.top, part.right - part.left,
                                 part.bottom - part.top, key, from.x, from.y);
               });
}

// Stored for the host to read back; nothing in the editor draws with it yet.
void CImageEditWnd::SetTexture(int nTexture) {
  if (!m_surfaces.drawingLayer.dc() || nTexture < 0 || nTexture > 100) return;
  m_texture = nTexture;
}
