#include "tools/text_edit_wnd.h"

BOOL CTextEditWnd::PreCreateWindow(CREATESTRUCTA& cs) {
  static constexpr char kClassName[] = "OstrelTextEdit";
  WNDCLASSA existing{};
  if (!GetClassInfoA(AfxGetInstanceHandle(), kClassName, &existing)) {
    WNDCLASSA windowClass{};
    windowClass.style = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS;
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = AfxGetInstanceHandle();
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    AfxRegisterClass(&windowClass);
  }
  cs.lpszClass = kClassName;
  return CWnd::PreCreateWindow(cs);
}
