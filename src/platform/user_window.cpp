// Window lifetime, geometry, visibility, focus, classes and message delivery.
#include <algorithm>
#include <map>

#include "platform/cwnd.h"
#include "platform/gdi.h"
#include "platform/gdi_objects.h"
#include "platform/text.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

using platform::window::Find;
using platform::window::Window;

namespace {

// Class names are compared without regard to case, as Windows compares them.
struct ClassNameLess {
  bool operator()(const std::string& a, const std::string& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
      return platform::AsciiLower(x) < platform::AsciiLower(y);
    });
  }
};

// The registered classes, starting with the built-in ones.
std::map<std::string, platform::window::WindowClass, ClassNameLess>& Classes() {
  static std::map<std::string, platform::window::WindowClass, ClassNameLess> classes{
      {"EDIT", platform::user::EditClass()}};
  return classes;
}

HWND& FocusWindow() {
  static HWND focus = nullptr;
  return focus;
}

bool IsSelfOrDescendant(HWND hwnd, HWND ancestor) {
  for (Window* w = Find(hwnd); w != nullptr; w = Find(w->parent)) {
    if (w->handle == ancestor) return true;
  }
  return false;
}

// The area a child covers on its parent, in the parent's client coordinates.
void InvalidateParentUnder(const Window& child) {
  if (child.parent != nullptr && (child.style & WS_VISIBLE)) InvalidateRect(child.parent, &child.rect, TRUE);
}

// The whole of a window and its descendants, their frames and bars too.
void InvalidateTree(Window& window) {
  window.nonClientPending = true;
  InvalidateRect(window.handle, nullptr, TRUE);
  for (HWND child : window.children) {
    if (Window* found = Find(child)) InvalidateTree(*found);
  }
}

void SendSizeIfChanged(HWND hwnd, const RECT& oldClient) {
  Window* window = Find(hwnd);
  if (window == nullptr) return;
  RECT client = platform::window::ClientRect(*window);
  if (client.right != oldClient.right || client.bottom != oldClient.bottom) {
    SendMessageA(hwnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.right, client.bottom));
  }
}

}  // namespace

namespace platform::window {

const WindowClass* FindClass(const std::string& name) {
  auto it = Classes().find(name);
  return it == Classes().end() ? nullptr : &it->second;
}

}  // namespace platform::window

namespace platform::user {

HWND CreateChildWindow(const NewWindow& request, LPARAM createStruct) {
  if (!IsWindow(request.parent)) return nullptr;
  const window::WindowClass* registered = window::FindClass(request.className);
  Window& window =
      window::Add(request.parent, registered ? *registered : window::WindowClass{request.className},
                  request.title, request.style, request.id,
                  RECT{request.rect.left, request.rect.top, std::max(request.rect.right, request.rect.left),
                       std::max(request.rect.bottom, request.rect.top)});
  const HWND hwnd = window.handle;
  // The object hears WM_CREATE, so it must know its window by then.
  window.object = request.object;
  if (request.object != nullptr) request.object->m_hWnd = hwnd;
  if (SendMessageA(hwnd, WM_CREATE, 0, createStruct) == -1) {
    DestroyWindow(hwnd);
    return nullptr;
  }
  RECT client{};
  if (!GetClientRect(hwnd, &client)) return nullptr;
  // As Windows does for a new window, the size message follows creation.
  SendMessageA(hwnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.right, client.bottom));
  Window* created = Find(hwnd);
  if (created == nullptr) return nullptr;
  if (request.style & WS_VISIBLE) {
    created->nonClientPending = true;
    InvalidateRect(hwnd, nullptr, TRUE);
  }
  return hwnd;
}

void ForgetFocusAndCapture(HWND hwnd) {
  if (IsSelfOrDescendant(FocusWindow(), hwnd)) FocusWindow() = nullptr;
  if (IsSelfOrDescendant(GetCapture(), hwnd)) ReleaseCapture();
}

void SetStyleBits(HWND hwnd, DWORD bits, bool on) {
  Window* window = Find(hwnd);
  if (window == nullptr) return;
  RECT oldClient = platform::window::ClientRect(*window);
  if (on) {
    window->style |= bits;
  } else {
    window->style &= ~bits;
  }
  SendSizeIfChanged(hwnd, oldClient);
}

}  // namespace platform::user

BOOL RegisterClassA(const WNDCLASSA* windowClass) {
  if (windowClass == nullptr || windowClass->lpszClassName == nullptr || *windowClass->lpszClassName == 0) {
    return FALSE;
  }
  std::string name = windowClass->lpszClassName;
  if (Classes().contains(name)) return FALSE;
  Classes()[name] = platform::window::WindowClass{name, windowClass->style, windowClass->lpfnWndProc,
                                                  windowClass->hCursor, windowClass->hbrBackground};
  return TRUE;
}

BOOL GetClassInfoA(HINSTANCE instance, LPCSTR className, WNDCLASSA* out) {
  if (className == nullptr || out == nullptr) return FALSE;
  const platform::window::WindowClass* found = platform::window::FindClass(className);
  if (found == nullptr) return FALSE;
  *out = WNDCLASSA{};
  out->style = found->style;
  out->lpfnWndProc = found->proc;
  out->hInstance = instance;
  out->hCursor = found->cursor;
  out->hbrBackground = found->background;
  out->lpszClassName = found->name.c_str();
  return TRUE;
}

HINSTANCE AfxGetInstanceHandle() {
  // The module is the program itself; any fixed non-null value names it.
  return reinterpret_cast<HINSTANCE>(static_cast<std::uintptr_t>(0x400000));
}

HWND CreateWindowExW(DWORD exStyle, const WCHAR* className, const WCHAR* windowName, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID param) {
  const std::string name = className == nullptr ? "" : platform::user::Utf8FromWide(className);
  if (platform::window::FindClass(name) == nullptr) return nullptr;
  const std::u16string title = windowName == nullptr ? u"" : windowName;
  CREATESTRUCTW cs{param,         instance,  menu,   parent, height, width, y, x, static_cast<LONG>(style),
                   title.c_str(), className, exStyle};
  const auto id = static_cast<UINT>(reinterpret_cast<std::uintptr_t>(menu));
  return platform::user::CreateChildWindow(
      {parent, name, title, style, id, RECT{x, y, x + width, y + height}}, reinterpret_cast<LPARAM>(&cs));
}

BOOL IsWindow(HWND hwnd) { return Find(hwnd) != nullptr; }

BOOL IsWindowVisible(HWND hwnd) {
  Window* window = Find(hwnd);
  return window != nullptr && platform::window::IsShownOnHost(*window);
}

HWND GetParent(HWND hwnd) {
  Window* window = Find(hwnd);
  return window == nullptr ? nullptr : window->parent;
}

HWND GetWindow(HWND hwnd, UINT command) {
  const Window* window = Find(hwnd);
  if (window == nullptr || command != GW_CHILD || window->children.empty()) return nullptr;
  return window->children.back();
}

HWND GetDlgItem(HWND parent, int id) {
  Window* window = Find(parent);
  if (window == nullptr) return nullptr;
  // Windows looks from the top of the z-order down.
  for (auto child = window->children.rbegin(); child != window->children.rend(); ++child) {
    const Window* record = Find(*child);
    if (record != nullptr && record->id == static_cast<UINT>(id)) return *child;
  }
  return nullptr;
}

CWnd* WindowObject(HWND hwnd) {
  Window* window = Find(hwnd);
  return window == nullptr ? nullptr : window->object;
}

BOOL GetClientRect(HWND hwnd, RECT* rect) {
  Window* window = Find(hwnd);
  if (window == nullptr || rect == nullptr) return FALSE;
  *rect = platform::window::ClientRect(*window);
  return TRUE;
}

BOOL GetWindowRect(HWND hwnd, RECT* rect) {
  Window* window = Find(hwnd);
  if (window == nullptr || rect == nullptr) return FALSE;
  *rect = platform::window::WindowRectOnHost(*window);
  return TRUE;
}

BOOL ShowWindow(HWND hwnd, int command) {
  Window* window = Find(hwnd);
  if (window == nullptr) return FALSE;
  bool wasVisible = (window->style & WS_VISIBLE) != 0;
  bool show = command != SW_HIDE;
  if (show == wasVisible || window->parent == nullptr) return wasVisible ? TRUE : FALSE;
  SendMessageA(hwnd, WM_SHOWWINDOW, show ? TRUE : FALSE, 0);
  window = Find(hwnd);
  if (window == nullptr) return wasVisible ? TRUE : FALSE;
  if (show) {
    window->style |= WS_VISIBLE;
    window->nonClientPending = true;
    InvalidateRect(hwnd, nullptr, TRUE);
  } else {
    InvalidateParentUnder(*window);
    window->style &= ~WS_VISIBLE;
  }
  return wasVisible ? TRUE : FALSE;
}

BOOL MoveWindow(HWND hwnd, int x, int y, int width, int height, BOOL repaint) {
  Window* window = Find(hwnd);
  if (window == nullptr || window->parent == nullptr) return FALSE;
  // As on Windows, a window moved to where it already is neither moves nor repaints:
  // a paint handler may place a child this way on every paint without painting again.
  const RECT wanted{x, y, x + std::max(width, 0), y + std::max(height, 0)};
  const RECT& now = window->rect;
  if (now.left == wanted.left && now.top == wanted.top && now.right == wanted.right &&
      now.bottom == wanted.bottom) {
    return TRUE;
  }
  if (repaint) InvalidateParentUnder(*window);
  RECT oldClient = platform::window::ClientRect(*window);
  window->rect = wanted;
  if (repaint) {
    window->nonClientPending = true;
    InvalidateRect(hwnd, nullptr, TRUE);
  }
  // As on Windows, the size message comes only when the client size really changed.
  SendSizeIfChanged(hwnd, oldClient);
  return TRUE;
}

BOOL DestroyWindow(HWND hwnd) {
  Window* window = Find(hwnd);
  if (window == nullptr || window->destroying) return FALSE;
  window->destroying = true;
  InvalidateParentUnder(*window);
  platform::user::ForgetFocusAndCapture(hwnd);
  // As on Windows: the window hears WM_DESTROY before its children do, and its
  // children are gone before its own WM_NCDESTROY.
  SendMessageA(hwnd, WM_DESTROY, 0, 0);
  while (true) {
    window = Find(hwnd);
    if (window == nullptr || window->children.empty()) break;
    HWND child = window->children.back();
    if (!DestroyWindow(child)) platform::window::Remove(child);
  }
  SendMessageA(hwnd, WM_NCDESTROY, 0, 0);
  platform::user::KillWindowTimers(hwnd);
  window = Find(hwnd);
  if (window == nullptr) return TRUE;
  if (window->object != nullptr) window->object->Detach();
  if (window->frame != nullptr) DeleteObject(window->frame);
  platform::window::Remove(hwnd);
  return TRUE;
}

HWND SetFocus(HWND hwnd) {
  HWND old = FocusWindow();
  if (hwnd != nullptr && Find(hwnd) == nullptr) return nullptr;
  if (hwnd == old) return old;
  FocusWindow() = hwnd;
  if (IsWindow(old)) SendMessageA(old, WM_KILLFOCUS, reinterpret_cast<WPARAM>(hwnd), 0);
  if (hwnd != nullptr && FocusWindow() == hwnd) {
    SendMessageA(hwnd, WM_SETFOCUS, reinterpret_cast<WPARAM>(old), 0);
  }
  return IsWindow(old) ? old : nullptr;
}

HWND GetFocus() { return IsWindow(FocusWindow()) ? FocusWindow() : nullptr; }

LRESULT SendMessageW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  Window* window = Find(hwnd);
  if (window == nullptr) return 0;
  if (window->object != nullptr) return window->object->Dispatch(message, wParam, lParam);
  if (window->windowClass.proc != nullptr) return window->windowClass.proc(hwnd, message, wParam, lParam);
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

LRESULT DefWindowProcA(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  Window* window = Find(hwnd);
  if (window == nullptr) return 0;
  switch (message) {
    case WM_CLOSE:
      DestroyWindow(hwnd);
      return 0;
    case WM_SETCURSOR:
      return platform::user::DefaultSetCursor(hwnd, wParam, lParam);
    case WM_MOUSEACTIVATE: {
      // A child lets its parent decide first, so the top-level window has the say.
      Window* parent = Find(window->parent);
      if (parent != nullptr && parent->parent != nullptr) {
        LRESULT answer = SendMessageA(parent->handle, message, wParam, lParam);
        if (answer != 0) return answer;
      }
      return MA_ACTIVATE;
    }
    case WM_ERASEBKGND: {
      if (window->windowClass.background == nullptr) return 0;
      RECT client = platform::window::ClientRect(*window);
      FillRect(reinterpret_cast<HDC>(wParam), &client, window->windowClass.background);
      return 1;
    }
    case WM_PAINT: {
      PAINTSTRUCT paint{};
      if (BeginPaint(hwnd, &paint) != nullptr) EndPaint(hwnd, &paint);
      return 0;
    }
    case WM_NCPAINT:
      platform::user::DrawNonClient(hwnd);
      return 0;
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
      return platform::user::DefaultTextMessage(hwnd, message, wParam, lParam);
    default:
      return 0;
  }
}

namespace platform {

HWND CreateHostWindow(int width, int height) {
  if (width <= 0 || height <= 0) return nullptr;
  HBITMAP frame = gdi::NewScreenFrame(width, height);
  if (frame == nullptr) return nullptr;
  // The host root shows white where no child covers it.
  window::WindowClass hostClass{"ImageEditHost", 0, nullptr, LoadCursorA(nullptr, IDC_ARROW),
                                static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))};
  Window& root = window::Add(nullptr, hostClass, u"", WS_VISIBLE, 0, RECT{0, 0, width, height});
  root.frame = frame;
  root.frameDrawn = root.rect;  // a new frame is all news to whoever copies it
  user::SetScreenSize(width, height);
  InvalidateRect(root.handle, nullptr, TRUE);
  return root.handle;
}

bool ResizeHostWindow(HWND host, int width, int height) {
  Window* root = Find(host);
  if (root == nullptr || root->parent != nullptr || width <= 0 || height <= 0) return false;
  if (root->rect.right == width && root->rect.bottom == height) return true;
  HBITMAP frame = gdi::NewScreenFrame(width, height);
  if (frame == nullptr) return false;
  DeleteObject(root->frame);
  root->frame = frame;
  root->rect = RECT{0, 0, width, height};
  root->frameDrawn = root->rect;
  user::SetScreenSize(width, height);
  // The new frame holds nothing yet: every window paints into it again.
  InvalidateTree(*root);
  return true;
}

WindowCounts LiveWindowObjects() {
  return WindowCounts{window::Count(), user::LiveMenus(), user::LiveCursors(), user::LiveTimers()};
}

HBITMAP HostFrame(HWND host) {
  Window* window = Find(host);
  return window == nullptr ? nullptr : window->frame;
}

}  // namespace platform
