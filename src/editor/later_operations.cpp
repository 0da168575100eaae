// Interface operations whose machinery arrives with later work. Each exists so the
// control can forward to it, and does nothing until its subsystem is built.
#include <cstdio>

#include "editor/image_edit_wnd.h"

std::string CImageEditWnd::GetColor() {
  char text[8];
  std::snprintf(text, sizeof text, "%02X%02X%02X", GetRValue(m_tools.color), GetGValue(m_tools.color),
                GetBValue(m_tools.color));
  return text;
}

std::string CImageEditWnd::SetColor(LPCSTR) { return GetColor(); }

void CImageEditWnd::SelectColor() {}
void CImageEditWnd::FillWithSelectedColor() {}
void CImageEditWnd::SetEraser(int) {}
void CImageEditWnd::SetPen(int) {}
void CImageEditWnd::SetBrush(int) {}
void CImageEditWnd::SetAirBrush(int) {}
void CImageEditWnd::SetBitmapBrush(LPCSTR) {}
void CImageEditWnd::SetShape(int) {}
void CImageEditWnd::EnterText() {}
std::string CImageEditWnd::SetTextFont(LPCSTR) { return std::string(); }
std::string CImageEditWnd::SetTextBackgroundColor(LPCSTR) { return std::string(); }
void CImageEditWnd::SelectRectangle() {}
void CImageEditWnd::SelectIrregular() {}
void CImageEditWnd::SetTransparency(int, int) {}
void CImageEditWnd::SetTexture(int) {}
void CImageEditWnd::SetFrame(int, LPCSTR, int, int) {}
void CImageEditWnd::RotateImage(int) {}
void CImageEditWnd::CutImage() {}
void CImageEditWnd::BlockImage() {}
void CImageEditWnd::CheckImage() {}
void CImageEditWnd::WaterDropImage() {}
void CImageEditWnd::MosaicImage() {}
void CImageEditWnd::InsertBalloonText(int, int, LPCSTR, int, int, int, int, LPCSTR) {}
void CImageEditWnd::InsertIcon(int, int, LPCSTR) {}
void CImageEditWnd::FlipImage() {}
void CImageEditWnd::ReverseImage() {}
void CImageEditWnd::EmbossImage() {}
void CImageEditWnd::EqualizeHistogram() {}
void CImageEditWnd::BlendImage(LPCSTR, int) {}
void CImageEditWnd::SetSelectionBox(int, int) {}
