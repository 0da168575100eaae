// Interface operations whose machinery arrives with later work. Each exists so the
// control can forward to it, and does nothing until its subsystem is built.
#include "editor/image_edit_wnd.h"

void CImageEditWnd::RotateImage(int) {}
void CImageEditWnd::BlockImage() {}
void CImageEditWnd::CheckImage() {}
void CImageEditWnd::WaterDropImage() {}
void CImageEditWnd::FlipImage() {}
void CImageEditWnd::ReverseImage() {}
void CImageEditWnd::EmbossImage() {}
void CImageEditWnd::EqualizeHistogram() {}
void CImageEditWnd::BlendImage(LPCSTR, int) {}
