#include "tools/text_edit_wnd.h"

BOOL CTextEditWnd::PreCreateWindow(CREATESTRUCTA& cs) {
  static constexpr char kClassName[] = "OstrelTextEdit";
  UseWindowClass(cs, kClassName, CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS);
  return CWnd::PreCreateWindow(cs);
}
