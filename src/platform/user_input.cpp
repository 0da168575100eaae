// Mouse and keyboard input from the host: key state, hit testing, capture, cursor
// clipping, and queued-message delivery through the pre-translate chain.
#include <algorithm>
#include <array>

#include "platform/cwnd.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

using platform::window::Find;
using platform::window::Window;

namespace {

struct InputState {
  std::array<bool, 256> keyDown{};
  HWND capture = nullptr;
  bool clipped = false;
  RECT clip{};
  RECT screen{};
  POINT cursor{};
};

InputState& Input() {
  static InputState state;
  return state;
}

bool IsButtonDown(UINT message) {
  return message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK || message == WM_RBUTTONDOWN;
}

void TrackButtons(UINT message) {
  auto& keys = Input().keyDown;
  if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) keys[VK_LBUTTON] = true;
  if (message == WM_LBUTTONUP) keys[VK_LBUTTON] = false;
  if (message == WM_RBUTTONDOWN) keys[VK_RBUTTON] = true;
  if (message == WM_RBUTTONUP) keys[VK_RBUTTON] = false;
}

WPARAM MouseKeyFlags() {
  const auto& keys = Input().keyDown;
  WPARAM flags = 0;
  if (keys[VK_LBUTTON]) flags |= MK_LBUTTON;
  if (keys[VK_RBUTTON]) flags |= MK_RBUTTON;
  if (keys[VK_SHIFT]) flags |= MK_SHIFT;
  if (keys[VK_CONTROL]) flags |= MK_CONTROL;
  return flags;
}

struct Hit {
  HWND hwnd = nullptr;
  POINT local{};  // in the window's client coordinates
  UINT code = HTNOWHERE;
};

// The deepest visible window under `point` (in `hwnd`'s client coordinates); later
// siblings lie above earlier ones. A point on a window's frame or bars hits that
// window, not its client area.
Hit HitTest(HWND hwnd, POINT point) {
  Window* window = Find(hwnd);
  RECT client = platform::window::ClientRect(*window);
  if (!PtInRect(&client, point)) return Hit{hwnd, point, platform::user::NonClientHitTest(*window, point)};
  for (auto it = window->children.rbegin(); it != window->children.rend(); ++it) {
    Window* child = Find(*it);
    if (child != nullptr && (child->style & WS_VISIBLE) && PtInRect(&child->rect, point)) {
      const int frame = platform::window::FrameThickness(*child);
      return HitTest(*it, POINT{point.x - child->rect.left - frame, point.y - child->rect.top - frame});
    }
  }
  return Hit{hwnd, point, HTCLIENT};
}

HWND TopLevelBelowHost(HWND hwnd) {
  HWND top = hwnd;
  for (Window* w = Find(hwnd); w != nullptr && w->parent != nullptr; w = Find(w->parent)) top = w->handle;
  return top;
}

// Queued input passes each window's PreTranslateMessage from the target up to the
// root; the first that takes it ends its journey (true).
bool DeliverQueued(MSG msg) {
  for (HWND w = msg.hwnd; w != nullptr; w = GetParent(w)) {
    CWnd* object = WindowObject(w);
    if (object != nullptr && object->PreTranslateMessage(&msg)) return true;
  }
  SendMessageA(msg.hwnd, msg.message, msg.wParam, msg.lParam);
  return false;
}

// Keyboard input goes to the focus window in this host's tree, else to the host's
// first child (the control), else to the host itself.
HWND KeyTarget(HWND host) {
  HWND focus = GetFocus();
  if (focus != nullptr && platform::window::HostOf(focus) == Find(host)) return focus;
  Window* root = Find(host);
  return root->children.empty() ? host : root->children.front();
}

// The character a key types by itself, whatever the keyboard layout; 0 for keys whose
// characters the host sends as typed text.
WPARAM ControlCharacter(int virtualKey) {
  switch (virtualKey) {
    case VK_BACK:
    case VK_TAB:
    case VK_RETURN:
    case VK_ESCAPE:
      return static_cast<WPARAM>(virtualKey);
    default:
      return 0;
  }
}

MSG MakeMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  return MSG{hwnd, message, wParam, lParam, static_cast<DWORD>(platform::ClockNow()), Input().cursor};
}

}  // namespace

HWND SetCapture(HWND hwnd) {
  HWND previous = GetCapture();
  if (IsWindow(hwnd)) Input().capture = hwnd;
  return previous;
}

BOOL ReleaseCapture() {
  Input().capture = nullptr;
  return TRUE;
}

HWND GetCapture() { return IsWindow(Input().capture) ? Input().capture : nullptr; }

BOOL ClipCursor(const RECT* rect) {
  InputState& state = Input();
  state.clipped = rect != nullptr;
  if (rect != nullptr) {
    // Like Windows, the clip never reaches outside the screen; an inverted rectangle
    // is taken with its corners sorted.
    RECT sorted{std::min(rect->left, rect->right), std::min(rect->top, rect->bottom),
                std::max(rect->left, rect->right), std::max(rect->top, rect->bottom)};
    state.clip =
        platform::window::IsEmpty(state.screen) ? sorted : platform::window::Intersect(sorted, state.screen);
  }
  return TRUE;
}

BOOL GetClipCursor(RECT* rect) {
  if (rect == nullptr) return FALSE;
  *rect = Input().clipped ? Input().clip : Input().screen;
  return TRUE;
}

BOOL GetCursorPos(POINT* point) {
  if (point == nullptr) return FALSE;
  *point = Input().cursor;
  return TRUE;
}

BOOL ClientToScreen(HWND hwnd, POINT* point) {
  Window* window = Find(hwnd);
  if (window == nullptr || point == nullptr) return FALSE;
  POINT origin = platform::window::ClientOrigin(*window);
  point->x += origin.x;
  point->y += origin.y;
  return TRUE;
}

BOOL ScreenToClient(HWND hwnd, POINT* point) {
  Window* window = Find(hwnd);
  if (window == nullptr || point == nullptr) return FALSE;
  POINT origin = platform::window::ClientOrigin(*window);
  point->x -= origin.x;
  point->y -= origin.y;
  return TRUE;
}

short GetKeyState(int virtualKey) {
  if (virtualKey < 0 || virtualKey > 255) return 0;
  return Input().keyDown[static_cast<std::size_t>(virtualKey)] ? static_cast<short>(0x8000) : 0;
}

namespace platform {

void SetKeyDown(int virtualKey, bool down) {
  if (virtualKey >= 0 && virtualKey <= 255) Input().keyDown[static_cast<std::size_t>(virtualKey)] = down;
}

void MouseInput(HWND host, UINT message, int x, int y) {
  if (!IsWindow(host)) return;
  InputState& state = Input();
  POINT point{x, y};
  if (state.clipped && !window::IsEmpty(state.clip)) {
    point.x = std::clamp(point.x, state.clip.left, state.clip.right - 1);
    point.y = std::clamp(point.y, state.clip.top, state.clip.bottom - 1);
  }
  state.cursor = point;
  TrackButtons(message);
  if (user::ScrollBarMouse(message, point)) return;

  Hit hit;
  if (HWND capture = GetCapture()) {
    hit = Hit{capture, point, HTCLIENT};
    ScreenToClient(capture, &hit.local);
  } else {
    hit = HitTest(host, point);
    LPARAM hitAndMessage = MAKELPARAM(static_cast<int>(hit.code), static_cast<int>(message));
    if (IsButtonDown(message)) {
      LRESULT activate = SendMessageA(hit.hwnd, WM_MOUSEACTIVATE,
                                      reinterpret_cast<WPARAM>(TopLevelBelowHost(hit.hwnd)), hitAndMessage);
      if (activate == MA_ACTIVATEANDEAT || activate == MA_NOACTIVATEANDEAT) return;
    }
    SendMessageA(hit.hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(hit.hwnd), hitAndMessage);
    // Presses on a scroll bar belong to the bar, and those on a frame to nobody: the
    // client area hears neither.
    if (hit.code != HTCLIENT) {
      const bool onBar = hit.code == HTVSCROLL || hit.code == HTHSCROLL;
      if (onBar && (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK)) {
        user::PressScrollBar(hit.hwnd, hit.code == HTVSCROLL ? SB_VERT : SB_HORZ, hit.local);
      }
      return;
    }
  }
  if (!IsWindow(hit.hwnd)) return;
  DeliverQueued(MakeMessage(hit.hwnd, message, MouseKeyFlags(), MAKELPARAM(hit.local.x, hit.local.y)));
}

bool KeyInput(HWND host, UINT message, int virtualKey, bool repeat) {
  if (!IsWindow(host) || virtualKey < 0 || virtualKey > 255) return false;
  bool up = message == WM_KEYUP;
  SetKeyDown(virtualKey, !up);
  // lParam: repeat count 1; bit 30 the key's previous state; bit 31 set on release.
  DWORD flags = 1;
  if (repeat || up) flags |= 1u << 30;
  if (up) flags |= 1u << 31;
  const MSG key =
      MakeMessage(KeyTarget(host), message, static_cast<WPARAM>(virtualKey), static_cast<LPARAM>(flags));
  if (DeliverQueued(key)) return true;
  if (const WPARAM typed = ControlCharacter(virtualKey); !up && typed != 0 && IsWindow(key.hwnd)) {
    DeliverQueued(MakeMessage(key.hwnd, WM_CHAR, typed, static_cast<LPARAM>(flags)));
  }
  return false;
}

void CharInput(HWND host, unsigned int codePoint) {
  if (!IsWindow(host) || codePoint > 0x10FFFF) return;
  const HWND target = KeyTarget(host);
  if (codePoint < 0x10000) {
    DeliverQueued(MakeMessage(target, WM_CHAR, codePoint, 1));
    return;
  }
  // Windows types a character beyond the first plane as its two surrogates.
  const unsigned offset = codePoint - 0x10000;
  DeliverQueued(MakeMessage(target, WM_CHAR, 0xD800 + (offset >> 10), 1));
  if (IsWindow(target)) DeliverQueued(MakeMessage(target, WM_CHAR, 0xDC00 + (offset & 0x3FF), 1));
}

namespace user {

void SetScreenSize(int width, int height) { Input().screen = RECT{0, 0, width, height}; }

}  // namespace user
}  // namespace platform
