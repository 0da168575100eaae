#include "tools/text_edit_wnd.h"

#include <vector>

#include "platform/gdi_draw.h"
#include "platform/gdi_handles.h"

namespace {

constexpr DWORD kEditStyle =
    WS_CHILD | WS_VISIBLE | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL | ES_WANTRETURN;
constexpr UINT kEditId = 1;
constexpr COLORREF kFrameDots = RGB(0x80, 0x80, 0x80);

}  // namespace

CTextEditWnd::~CTextEditWnd() {
  if (HWND edit = m_edit.Detach()) ::DestroyWindow(edit);
}

BOOL CTextEditWnd::PreCreateWindow(CREATESTRUCTA& cs) {
  static constexpr char kClassName[] = "OstrelTextEdit";
  UseWindowClass(cs, kClassName, CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS);
  return CWnd::PreCreateWindow(cs);
}

// Without its edit control the box still exists; it just never counts as shown.
int CTextEditWnd::OnCreate(LPCREATESTRUCTA cs) {
  if (CWnd::OnCreate(cs) == -1) return -1;
  HWND edit = CreateWindowExW(0, u"EDIT", nullptr, kEditStyle, 0, 0, 0, 0, m_hWnd,
                              reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(kEditId)),
                              AfxGetInstanceHandle(), nullptr);
  if (edit != nullptr) m_edit.Attach(edit);
  return 0;
}

void CTextEditWnd::OnSize(UINT type, int cx, int cy) {
  CWnd::OnSize(type, cx, cy);
  if (IsWindow(m_edit.m_hWnd)) ::MoveWindow(m_edit.m_hWnd, 0, 0, cx, cy, TRUE);
}

void CTextEditWnd::OnPaint() {
  if (IsWindow(m_edit.m_hWnd)) m_edit.Invalidate(TRUE);
  CWnd::OnPaint();
}

// A dotted grey outline on white along the box's outer edge; the edit control covers
// the rest.
void CTextEditWnd::OnNcPaint() {
  HDC dc = ::GetWindowDC(m_hWnd);
  if (dc == nullptr) return;
  RECT window{};
  ::GetWindowRect(m_hWnd, &window);
  const int width = window.right - window.left;
  const int height = window.bottom - window.top;
  {
    platform::SelectionGuard whitePen(dc, GetStockObject(WHITE_PEN));
    Rectangle(dc, 0, 0, width, height);
  }
  const LOGBRUSH dots{BS_SOLID, kFrameDots, 0};
  platform::OwnedPen dotted(ExtCreatePen(PS_COSMETIC | PS_DOT, 1, &dots, 0, nullptr));
  if (dotted) {
    platform::SelectionGuard dottedPen(dc, dotted.get());
    Rectangle(dc, 0, 0, width, height);
  }
  ::ReleaseDC(m_hWnd, dc);
}

std::u16string CTextEditWnd::GetText() const {
  if (!m_shown) return {};
  const int length = GetWindowTextLengthW(m_edit.m_hWnd);
  if (length <= 0) return {};
  std::vector<WCHAR> buffer(static_cast<std::size_t>(length) + 1);
  const int copied = GetWindowTextW(m_edit.m_hWnd, buffer.data(), length + 1);
  return std::u16string(buffer.data(), static_cast<std::size_t>(std::max(copied, 0)));
}

void CTextEditWnd::Show(bool show) {
  m_shown = IsWindow(m_edit.m_hWnd) == TRUE;
  if (!m_shown) return;
  ShowWindow(show ? SW_SHOWNORMAL : SW_HIDE);
  m_shown = show;
}

void CTextEditWnd::ClearText() {
  if (!IsWindow(m_edit.m_hWnd)) return;
  m_edit.SetSel(0, -1);
  m_edit.Clear();
}

void CTextEditWnd::ChangeFont(HFONT font) {
  if (m_shown && IsWindow(m_edit.m_hWnd))
    m_edit.SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

RECT CTextEditWnd::TextRect() const {
  RECT rect{0, 0, 0, 0};
  ::GetWindowRect(m_edit.m_hWnd, &rect);
  return rect;
}
