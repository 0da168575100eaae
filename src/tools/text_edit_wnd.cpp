#include "tools/text_edit_wnd.h"

BOOL CTextEditWnd::PreCreateWindow(CREATESTRUCTA& cs) {
  static constexpr char kClassName[] = "OstrelTextEdit";
  UseWindowClass(cs, kClassName, CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS);
  return CWnd::PreCreateWindow(cs);
}

void CTextEditWnd::Open(const RECT& rect, HFONT font) {
  if (m_hWnd == nullptr) return;
  MoveWindow(m_hWnd, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, TRUE);
  ShowWindow(SW_SHOWNORMAL);
  ::SendMessageA(EditWindow(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  ::SetFocus(EditWindow());
}

void CTextEditWnd::HideAndClear() {
  if (m_hWnd == nullptr) return;
  ShowWindow(SW_HIDE);
  ::SendMessageA(EditWindow(), EM_SETSEL, 0, -1);
  ::SendMessageA(EditWindow(), EM_SCROLLCARET, 0, 0);
  ::SendMessageA(EditWindow(), WM_CLEAR, 0, 0);
}

void CTextEditWnd::ChangeFont(HFONT font) {
  if (IsShown()) ::SendMessageA(EditWindow(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

// Typing arrives with the edit control; until then the box holds no text.
std::u16string CTextEditWnd::GetText() const { return std::u16string(); }

RECT CTextEditWnd::TextRect() const {
  RECT rect{0, 0, 0, 0};
  ::GetWindowRect(EditWindow(), &rect);
  return rect;
}
