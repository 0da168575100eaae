#include "control/image_edit_ctrl.h"

#include <utility>
#include <vector>

#include "resources/module_resources.h"

namespace {

constexpr char kControlClassName[] = "OstrelImageEditCtrl";
constexpr char kEditorTitle[] = "Image Edit";
// Shown only once it exists.
constexpr DWORD kEditorStyle = WS_CHILD | kClassStyleBits;
constexpr UINT kControlClassStyle = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS;

// Keys the editor handles itself; the host must never see them while the control has
// the focus (Tab would move the focus out, the arrows would scroll the host page).
bool IsEditorKey(WPARAM virtualKey) {
  switch (virtualKey) {
    case VK_TAB:
    case VK_ESCAPE:
    case VK_PRIOR:
    case VK_NEXT:
    case VK_END:
    case VK_HOME:
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
    case VK_DELETE:
      return true;
    default:
      return false;
  }
}

}  // namespace

// The editor reaches back to the control to fire its events.
CImageEditCtrl::CImageEditCtrl() : m_editor(this) {}

// The editor member is destroyed before the window base, so the editor window goes
// first, then the control's own.
CImageEditCtrl::~CImageEditCtrl() = default;

BOOL CImageEditCtrl::CreateControl(HWND parent, int width, int height) {
  createWidth_ = width;
  createHeight_ = height;
  const RECT rect{0, 0, width, height};
  if (!CreateInParent(nullptr, "", WS_CHILD | WS_VISIBLE, rect, parent, 0)) return FALSE;
  OnActivateInPlace();
  return TRUE;
}

// ---- interface methods ----
// All but AboutBox forward to the editor (interface/control_methods.cpp, generated).

// The About box needs no editor: it works in every state, modal, with no parent.
void CImageEditCtrl::AboutBox() { platform::ShowDialogResource(resources::kAboutDialogId); }

void CImageEditCtrl::OnProperties() { resources::ShowPropertyPage(); }

// ---- what hosts read ----

HBITMAP CImageEditCtrl::SurfaceBitmap(SurfaceName surface) {
  if (surface == SurfaceName::Composition) m_editor.ComposeView();
  return m_editor.SurfaceBitmap(surface);
}

// ---- events ----

DWORD CImageEditCtrl::Advise(IEventSink* sink) {
  if (sink == nullptr) return 0;
  const DWORD cookie = nextCookie_++;
  sinks_.emplace(cookie, sink);
  return cookie;
}

BOOL CImageEditCtrl::Unadvise(DWORD cookie) { return sinks_.erase(cookie) == 1 ? TRUE : FALSE; }

void CImageEditCtrl::FireColorSelected(const std::string& color) {
  const std::vector<Variant> args{Variant::String(color)};
  // Work from a copy so that a sink may disconnect during the call; a sink that was
  // disconnected by an earlier one is skipped.
  const std::map<DWORD, IEventSink*> connected = sinks_;
  for (const auto& [cookie, sink] : connected) {
    if (sinks_.contains(cookie)) sink->Invoke(DISPID_COLORSELECTED, args);
  }
}

// ---- window ----

BOOL CImageEditCtrl::PreCreateWindow(CREATESTRUCTA& cs) {
  UseWindowClass(cs, kControlClassName, kControlClassStyle);
  return CWnd::PreCreateWindow(cs);
}

BOOL CImageEditCtrl::PreTranslateMessage(MSG* msg) {
  const bool keyMessage = msg->message == WM_KEYDOWN || msg->message == WM_KEYUP;
  if (m_editor.m_windowCreated && keyMessage && IsEditorKey(msg->wParam)) {
    if (IsWindow(m_editor.m_hWnd)) SendMessageA(m_editor.m_hWnd, msg->message, msg->wParam, msg->lParam);
    return TRUE;
  }
  return CWnd::PreTranslateMessage(msg);
}

int CImageEditCtrl::OnCreate(LPCREATESTRUCTA cs) {
  if (CWnd::OnCreate(cs) == -1) return -1;
  const RECT rect{0, 0, createWidth_, createHeight_};
  m_editor.Create(nullptr, kEditorTitle, kEditorStyle, rect, this, kEditorWindowId);
  // A failed creation leaves every method inert; the control window itself lives on.
  m_editor.m_windowCreated = IsWindow(m_editor.m_hWnd) == TRUE;
  if (m_editor.m_windowCreated) m_editor.ShowWindow(SW_SHOWNORMAL);
  return 0;
}

int CImageEditCtrl::OnMouseActivate(HWND topParent, UINT hitTest, UINT message) {
  if (!uiActive_) OnActivateInPlace();
  return CWnd::OnMouseActivate(topParent, hitTest, message);
}

// The editor fills the control, so what a person types belongs to it: the focus the
// host gives the control passes on to the editor window. The editor keys still meet
// the control's PreTranslateMessage first, on their way up from the editor.
void CImageEditCtrl::OnSetFocus(HWND oldFocus) {
  CWnd::OnSetFocus(oldFocus);
  if (m_editor.m_windowCreated && IsWindow(m_editor.m_hWnd)) m_editor.SetFocus();
}

void CImageEditCtrl::OnPaint() {
  PAINTSTRUCT paint{};
  HDC hdc = BeginPaint(m_hWnd, &paint);
  RECT bounds{};
  GetClientRect(&bounds);
  OnDraw(hdc, bounds);
  EndPaint(m_hWnd, &paint);
}

void CImageEditCtrl::OnDraw(HDC hdc, const RECT& bounds) {
  FillRect(hdc, &bounds, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  if (m_editor.m_windowCreated) InvalidateRect(m_editor.m_hWnd, nullptr, TRUE);
}

// In-place activation with the user interface: the control takes the focus, so its
// key routing sees the keyboard.
void CImageEditCtrl::OnActivateInPlace() {
  uiActive_ = true;
  SetFocus();
}
