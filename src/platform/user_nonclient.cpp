// The non-client area: a sizing frame round a window with WS_THICKFRAME, and the
// standard scroll bars inside it. The frame is drawn and hit like the system's, but
// dragging it does not resize the window: nothing here needs that.
#include "platform/gdi.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

namespace {

// The system's face and shadow colours, which the scroll bars use too.
constexpr COLORREF kFrameFace = RGB(0xF0, 0xF0, 0xF0);
constexpr COLORREF kFrameEdge = RGB(0xA0, 0xA0, 0xA0);

void Fill(HDC dc, const RECT& r, COLORREF color) {
  HBRUSH brush = CreateSolidBrush(color);
  FillRect(dc, &r, brush);
  DeleteObject(brush);
}

// A band of the face colour `thickness` wide inside the window's edge, outlined by one
// pixel of the shadow colour along the edge.
void DrawPlainFrame(HDC dc, int width, int height, int thickness) {
  Fill(dc, RECT{0, 0, width, thickness}, kFrameFace);
  Fill(dc, RECT{0, height - thickness, width, height}, kFrameFace);
  Fill(dc, RECT{0, thickness, thickness, height - thickness}, kFrameFace);
  Fill(dc, RECT{width - thickness, thickness, width, height - thickness}, kFrameFace);
  Fill(dc, RECT{0, 0, width, 1}, kFrameEdge);
  Fill(dc, RECT{0, height - 1, width, height}, kFrameEdge);
  Fill(dc, RECT{0, 0, 1, height}, kFrameEdge);
  Fill(dc, RECT{width - 1, 0, width, height}, kFrameEdge);
}

}  // namespace

namespace platform::user {

void DrawNonClient(HWND hwnd) {
  window::Window* window = window::Find(hwnd);
  if (window == nullptr) return;
  if (const int thickness = window::FrameThickness(*window); thickness > 0) {
    if (HDC dc = GetWindowDC(hwnd)) {
      DrawPlainFrame(dc, window->rect.right - window->rect.left, window->rect.bottom - window->rect.top,
                     thickness);
      ReleaseDC(hwnd, dc);
    }
  }
  RedrawScrollBars(hwnd);
}

UINT NonClientHitTest(const window::Window& window, POINT point) {
  const int thickness = window::FrameThickness(window);
  if (thickness > 0) {
    const int width = window.rect.right - window.rect.left;
    const int height = window.rect.bottom - window.rect.top;
    const int x = point.x + thickness;  // from the window's top-left corner
    const int y = point.y + thickness;
    const bool left = x < thickness;
    const bool right = x >= width - thickness;
    if (y < thickness) return left ? HTTOPLEFT : right ? HTTOPRIGHT : HTTOP;
    if (y >= height - thickness) return left ? HTBOTTOMLEFT : right ? HTBOTTOMRIGHT : HTBOTTOM;
    if (left) return HTLEFT;
    if (right) return HTRIGHT;
  }
  return point.x >= window::ClientRect(window).right ? HTVSCROLL : HTHSCROLL;
}

}  // namespace platform::user
