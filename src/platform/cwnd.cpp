#include "platform/cwnd.h"

#include "platform/dialog_resources.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

namespace {

// The string the framework captions its message boxes with: the module's title.
constexpr UINT AFX_IDS_APP_TITLE = 0xE000;

// The wait cursor nests: the outermost Begin saves the cursor it replaces and the
// matching End puts it back.
struct WaitCursor {
  int depth = 0;
  HCURSOR saved = nullptr;
};

WaitCursor& TheWaitCursor() {
  static WaitCursor wait;
  return wait;
}

POINT MousePoint(LPARAM lParam) { return POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}; }

UINT Low(std::uintptr_t value) { return LOWORD(value); }
UINT High(std::uintptr_t value) { return HIWORD(value); }

}  // namespace

CWnd::~CWnd() {
  if (::IsWindow(m_hWnd)) ::DestroyWindow(m_hWnd);
}

BOOL CWnd::Create(LPCSTR className, LPCSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id) {
  return CreateInParent(className, windowName, style, rect, parent == nullptr ? nullptr : parent->m_hWnd, id);
}

// Every window lives in a host's tree, so a window needs a live parent.
BOOL CWnd::CreateInParent(LPCSTR className, LPCSTR windowName, DWORD style, const RECT& rect, HWND parent,
                          UINT id) {
  if (m_hWnd != nullptr) return FALSE;
  CREATESTRUCTA cs{};
  cs.hInstance = AfxGetInstanceHandle();
  cs.hwndParent = parent;
  cs.x = rect.left;
  cs.y = rect.top;
  cs.cx = rect.right - rect.left;
  cs.cy = rect.bottom - rect.top;
  cs.style = static_cast<LONG>(style);
  cs.lpszName = windowName;
  cs.lpszClass = className;
  if (!PreCreateWindow(cs)) return FALSE;
  const platform::user::NewWindow request{
      cs.hwndParent,
      cs.lpszClass == nullptr ? "" : cs.lpszClass,
      platform::user::WideFromUtf8(cs.lpszName == nullptr ? "" : cs.lpszName),
      static_cast<DWORD>(cs.style),
      id,
      RECT{cs.x, cs.y, cs.x + cs.cx, cs.y + cs.cy},
      this};
  return platform::user::CreateChildWindow(request, reinterpret_cast<LPARAM>(&cs)) != nullptr ? TRUE : FALSE;
}

BOOL CWnd::DestroyWindow() { return ::DestroyWindow(m_hWnd); }

BOOL CWnd::Attach(HWND hwnd) {
  if (m_hWnd != nullptr || !::IsWindow(hwnd)) return FALSE;
  m_hWnd = hwnd;
  return TRUE;
}

BOOL CWnd::PreCreateWindow(CREATESTRUCTA& /*cs*/) { return TRUE; }

BOOL CWnd::PreTranslateMessage(MSG* /*msg*/) { return FALSE; }

LRESULT CWnd::Dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
  CurrentMessage outer = current_;
  current_ = CurrentMessage{message, wParam, lParam};
  LRESULT result = WindowProc(message, wParam, lParam);
  current_ = outer;
  return result;
}

LRESULT CWnd::Default() {
  platform::window::Window* window = platform::window::Find(m_hWnd);
  if (window == nullptr) return 0;
  WNDPROC proc = window->windowClass.proc != nullptr ? window->windowClass.proc : DefWindowProcA;
  return proc(m_hWnd, current_.message, current_.wParam, current_.lParam);
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      return OnCreate(reinterpret_cast<LPCREATESTRUCTA>(lParam));
    case WM_DESTROY:
      OnDestroy();
      return 0;
    case WM_CLOSE:
      OnClose();
      return 0;
    case WM_SIZE:
      OnSize(static_cast<UINT>(wParam), static_cast<int>(Low(lParam)), static_cast<int>(High(lParam)));
      return 0;
    case WM_PAINT:
      OnPaint();
      return 0;
    case WM_NCPAINT:
      OnNcPaint();
      return 0;
    case WM_ERASEBKGND:
      return OnEraseBkgnd(reinterpret_cast<HDC>(wParam));
    case WM_LBUTTONDOWN:
      OnLButtonDown(static_cast<UINT>(wParam), MousePoint(lParam));
      return 0;
    case WM_LBUTTONUP:
      OnLButtonUp(static_cast<UINT>(wParam), MousePoint(lParam));
      return 0;
    case WM_LBUTTONDBLCLK:
      OnLButtonDblClk(static_cast<UINT>(wParam), MousePoint(lParam));
      return 0;
    case WM_RBUTTONDOWN:
      OnRButtonDown(static_cast<UINT>(wParam), MousePoint(lParam));
      return 0;
    case WM_RBUTTONUP:
      OnRButtonUp(static_cast<UINT>(wParam), MousePoint(lParam));
      return 0;
    case WM_MOUSEMOVE:
      OnMouseMove(static_cast<UINT>(wParam), MousePoint(lParam));
      return 0;
    case WM_KEYDOWN:
      OnKeyDown(static_cast<UINT>(wParam), Low(lParam), High(lParam));
      return 0;
    case WM_KEYUP:
      OnKeyUp(static_cast<UINT>(wParam), Low(lParam), High(lParam));
      return 0;
    case WM_CHAR:
      OnChar(static_cast<UINT>(wParam), Low(lParam), High(lParam));
      return 0;
    case WM_TIMER:
      OnTimer(wParam);
      return 0;
    case WM_HSCROLL:
      OnHScroll(Low(wParam), High(wParam), reinterpret_cast<HWND>(lParam));
      return 0;
    case WM_VSCROLL:
      OnVScroll(Low(wParam), High(wParam), reinterpret_cast<HWND>(lParam));
      return 0;
    case WM_SETCURSOR:
      return OnSetCursor(reinterpret_cast<HWND>(wParam), Low(lParam), High(lParam));
    case WM_MOUSEACTIVATE:
      return OnMouseActivate(reinterpret_cast<HWND>(wParam), Low(lParam), High(lParam));
    case WM_COMMAND:
      return OnCommand(wParam, lParam) ? 0 : Default();
    case WM_SETFOCUS:
      OnSetFocus(reinterpret_cast<HWND>(wParam));
      return 0;
    case WM_KILLFOCUS:
      OnKillFocus(reinterpret_cast<HWND>(wParam));
      return 0;
    case WM_INITMENUPOPUP:
      OnInitMenuPopup(reinterpret_cast<HMENU>(wParam), Low(lParam), High(lParam));
      return 0;
    default:
      return Default();
  }
}

int CWnd::OnCreate(LPCREATESTRUCTA /*cs*/) { return static_cast<int>(Default()); }
void CWnd::OnDestroy() { Default(); }
void CWnd::OnClose() { Default(); }
void CWnd::OnSize(UINT /*type*/, int /*cx*/, int /*cy*/) { Default(); }
void CWnd::OnPaint() { Default(); }
void CWnd::OnNcPaint() { Default(); }
BOOL CWnd::OnEraseBkgnd(HDC /*hdc*/) { return static_cast<BOOL>(Default()); }
void CWnd::OnLButtonDown(UINT /*flags*/, POINT /*point*/) { Default(); }
void CWnd::OnLButtonUp(UINT /*flags*/, POINT /*point*/) { Default(); }
void CWnd::OnLButtonDblClk(UINT /*flags*/, POINT /*point*/) { Default(); }
void CWnd::OnRButtonDown(UINT /*flags*/, POINT /*point*/) { Default(); }
void CWnd::OnRButtonUp(UINT /*flags*/, POINT /*point*/) { Default(); }
void CWnd::OnMouseMove(UINT /*flags*/, POINT /*point*/) { Default(); }
void CWnd::OnKeyDown(UINT /*virtualKey*/, UINT /*repeatCount*/, UINT /*flags*/) { Default(); }
void CWnd::OnKeyUp(UINT /*virtualKey*/, UINT /*repeatCount*/, UINT /*flags*/) { Default(); }
void CWnd::OnChar(UINT /*character*/, UINT /*repeatCount*/, UINT /*flags*/) { Default(); }
void CWnd::OnTimer(UINT_PTR /*id*/) { Default(); }
void CWnd::OnHScroll(UINT /*code*/, UINT /*pos*/, HWND /*scrollBar*/) { Default(); }
void CWnd::OnVScroll(UINT /*code*/, UINT /*pos*/, HWND /*scrollBar*/) { Default(); }
BOOL CWnd::OnSetCursor(HWND /*hwnd*/, UINT /*hitTest*/, UINT /*message*/) {
  return static_cast<BOOL>(Default());
}
int CWnd::OnMouseActivate(HWND /*topParent*/, UINT /*hitTest*/, UINT /*message*/) {
  return static_cast<int>(Default());
}
// Not handled here: the caller runs the default processing.
BOOL CWnd::OnCommand(WPARAM /*wParam*/, LPARAM /*lParam*/) { return FALSE; }
void CWnd::OnSetFocus(HWND /*oldFocus*/) { Default(); }
void CWnd::OnKillFocus(HWND /*newFocus*/) { Default(); }
void CWnd::OnInitMenuPopup(HMENU /*popup*/, UINT /*index*/, BOOL /*systemMenu*/) { Default(); }

void CWnd::BeginWaitCursor() {
  WaitCursor& wait = TheWaitCursor();
  HCURSOR previous = ::SetCursor(LoadCursorA(nullptr, IDC_WAIT));
  if (wait.depth++ == 0) wait.saved = previous;
}

void CWnd::EndWaitCursor() {
  WaitCursor& wait = TheWaitCursor();
  if (wait.depth == 0) return;
  if (--wait.depth == 0) ::SetCursor(wait.saved);
}

int AfxMessageBox(LPCSTR text, UINT type, UINT /*helpId*/) {
  return MessageBoxA(nullptr, text, platform::LoadStringResource(AFX_IDS_APP_TITLE).c_str(), type);
}

BOOL AfxRegisterClass(WNDCLASSA* windowClass) { return RegisterClassA(windowClass); }

void UseWindowClass(CREATESTRUCTA& cs, LPCSTR className, UINT classStyle) {
  WNDCLASSA windowClass{};
  if (!GetClassInfoA(AfxGetInstanceHandle(), className, &windowClass)) {
    windowClass = WNDCLASSA{};
    windowClass.style = classStyle;
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = AfxGetInstanceHandle();
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.lpszClassName = className;
    AfxRegisterClass(&windowClass);
  }
  cs.lpszClass = className;
}

void CEdit::SetSel(int start, int end, BOOL noScroll) {
  SendMessage(EM_SETSEL, static_cast<WPARAM>(start), end);
  if (!noScroll) SendMessage(EM_SCROLLCARET);
}
