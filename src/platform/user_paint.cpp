// Painting: update areas, paint passes into the host frame, window DCs.
//
// A window's update area is one rectangle (the union of what was invalidated).
// Paint passes run only on demand: UpdateWindow, RedrawWindow with RDW_UPDATENOW, or
// FlushPaint, which a host calls after each input. A pass paints the window and then
// its visible children over it; children under a repainted part of their parent are
// repainted there too, since the parent's painting is not clipped around them.
#include "platform/gdi.h"
#include "platform/host.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

using platform::window::Find;
using platform::window::Window;

namespace {

void PresentIfChanged(HWND hwnd) {
  Window* host = platform::window::HostOf(hwnd);
  if (host == nullptr || !host->frameChanged) return;
  host->frameChanged = false;
  platform::CurrentHost().PresentFrame(host->handle);
}

void PaintOne(HWND hwnd) {
  Window* window = Find(hwnd);
  RECT area = window->update;
  for (HWND childHandle : std::vector<HWND>(window->children)) {
    Window* child = Find(childHandle);
    if (child == nullptr || !(child->style & WS_VISIBLE)) continue;
    RECT under = platform::window::Intersect(area, child->rect);
    if (platform::window::IsEmpty(under)) continue;
    const POINT origin = platform::window::ClientOrigin(*child);
    const POINT parentOrigin = platform::window::ClientOrigin(*window);
    RECT inChild = platform::window::Offset(under, parentOrigin.x - origin.x, parentOrigin.y - origin.y);
    InvalidateRect(childHandle, &inChild, TRUE);
    child->nonClientPending = true;
  }
  SendMessageA(hwnd, WM_PAINT, 0, 0);
  // A handler that never validates is not asked again in the same pass.
  if (Window* painted = Find(hwnd)) {
    painted->update = RECT{};
    painted->erasePending = false;
  }
}

void PaintTree(HWND hwnd) {
  Window* window = Find(hwnd);
  if (window == nullptr || !platform::window::IsShownOnHost(*window)) return;
  // The frame and the scroll bars lie outside the client area: they are drawn whenever
  // the window is painted, shown or moved, and whenever its parent painted over them.
  if (!platform::window::IsEmpty(window->update) || window->nonClientPending) {
    window->nonClientPending = false;
    SendMessageA(hwnd, WM_NCPAINT, 1, 0);
    window = Find(hwnd);
    if (window == nullptr) return;
  }
  if (!platform::window::IsEmpty(window->update)) PaintOne(hwnd);
  window = Find(hwnd);
  if (window == nullptr) return;
  for (HWND child : std::vector<HWND>(window->children)) PaintTree(child);
}

// A DC on the host frame at the window's client origin, clipped to `area` (client
// coordinates) and to what of the client area its ancestors let through.
HDC ClientDC(Window& window, const RECT& area) {
  POINT origin = platform::window::ClientOrigin(window);
  RECT clip{};
  if (platform::window::IsShownOnHost(window)) {
    clip = platform::window::Intersect(platform::window::VisibleClientOnHost(window),
                                       platform::window::Offset(area, origin.x, origin.y));
  }
  return platform::user::HostFrameDC(window, origin, clip);
}

}  // namespace

BOOL InvalidateRect(HWND hwnd, const RECT* rect, BOOL erase) {
  Window* window = Find(hwnd);
  if (window == nullptr) return FALSE;
  RECT client = platform::window::ClientRect(*window);
  RECT area = rect == nullptr ? client : platform::window::Intersect(*rect, client);
  if (platform::window::IsEmpty(area)) return TRUE;
  window->update = platform::window::Union(window->update, area);
  if (erase) window->erasePending = true;
  return TRUE;
}

BOOL UpdateWindow(HWND hwnd) {
  if (!IsWindow(hwnd)) return FALSE;
  PaintTree(hwnd);
  PresentIfChanged(hwnd);
  return TRUE;
}

BOOL RedrawWindow(HWND hwnd, const RECT* rect, HRGN /*region*/, UINT flags) {
  if (!IsWindow(hwnd)) return FALSE;
  if (flags & RDW_INVALIDATE) InvalidateRect(hwnd, rect, (flags & RDW_ERASE) ? TRUE : FALSE);
  if (flags & RDW_UPDATENOW) UpdateWindow(hwnd);
  return TRUE;
}

HDC BeginPaint(HWND hwnd, PAINTSTRUCT* paint) {
  Window* window = Find(hwnd);
  if (window == nullptr || paint == nullptr) return nullptr;
  RECT area = window->update;
  bool erase = window->erasePending;
  window->update = RECT{};
  window->erasePending = false;
  HDC dc = ClientDC(*window, area);
  if (dc == nullptr) return nullptr;
  paint->hdc = dc;
  paint->rcPaint = area;
  // fErase tells the painter the background still needs erasing.
  paint->fErase = erase && SendMessageA(hwnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0) == 0;
  return dc;
}

BOOL EndPaint(HWND /*hwnd*/, const PAINTSTRUCT* paint) {
  if (paint == nullptr || paint->hdc == nullptr) return FALSE;
  DeleteDC(paint->hdc);
  return TRUE;
}

HDC GetDC(HWND hwnd) {
  if (hwnd == nullptr) return platform::CreateScreenDC();
  Window* window = Find(hwnd);
  if (window == nullptr) return nullptr;
  return ClientDC(*window, platform::window::ClientRect(*window));
}

HDC GetWindowDC(HWND hwnd) {
  if (hwnd == nullptr) return platform::CreateScreenDC();
  Window* window = Find(hwnd);
  if (window == nullptr) return nullptr;
  const RECT whole = platform::window::WindowRectOnHost(*window);
  return platform::user::HostFrameDC(*window, POINT{whole.left, whole.top},
                                     platform::window::VisibleOnHost(*window, whole));
}

int ReleaseDC(HWND /*hwnd*/, HDC hdc) { return hdc != nullptr && DeleteDC(hdc) ? 1 : 0; }

namespace platform {

void FlushPaint(HWND host) {
  if (!IsWindow(host)) return;
  PaintTree(host);
  PresentIfChanged(host);
}

RECT TakeHostFrameDrawn(HWND host) {
  Window* window = Find(host);
  if (window == nullptr || window->frame == nullptr) return RECT{};
  const RECT drawn = window->frameDrawn;
  window->frameDrawn = RECT{};
  return drawn;
}

namespace user {

HDC HostFrameDC(const window::Window& window, POINT origin, const RECT& clip) {
  Window* host = window::HostOf(window.handle);
  if (host == nullptr || host->frame == nullptr) return nullptr;
  HDC dc = CreateWindowDC(host->frame, origin.x, origin.y, clip);
  if (dc != nullptr) {
    host->frameChanged = true;
    host->frameDrawn = window::Union(host->frameDrawn, clip);
  }
  return dc;
}

void FlushAllPaint() {
  for (HWND host : window::HostRoots()) FlushPaint(host);
}

}  // namespace user
}  // namespace platform
