// Interface operations whose machinery arrives with later work. Each exists so the
// control can forward to it, and does nothing until its subsystem is built.
#include "editor/image_edit_wnd.h"

void CImageEditWnd::SetTexture(int) {}
void CImageEditWnd::SetFrame(int, LPCSTR, int, int) {}
