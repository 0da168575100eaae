// The standard scroll bars of a window: range, page and position. A shown bar takes
// SCROLLBAR_THICKNESS pixels from the client area (right for vertical, bottom for
// horizontal); a change of the client size sends WM_SIZE as Windows does. The bars
// are drawn into the host frame straight away when asked to redraw, and again in each
// paint pass of their window.
#include <algorithm>

#include "platform/gdi.h"
#include "platform/scroll_bar.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

using platform::window::ScrollBarState;

namespace {

ScrollBarState* BarOf(HWND hwnd, int bar) {
  platform::window::Window* window = platform::window::Find(hwnd);
  if (window == nullptr) return nullptr;
  if (bar == SB_HORZ) return &window->horizontal;
  if (bar == SB_VERT) return &window->vertical;
  return nullptr;
}

DWORD StyleOf(int bar) { return bar == SB_HORZ ? WS_HSCROLL : WS_VSCROLL; }

// Windows keeps the position where a whole page still fits: [min, max - (page - 1)].
int ClampPosition(const ScrollBarState& state, int pos) {
  int page = static_cast<int>(std::min<UINT>(state.page, 0x7FFFFFFF));
  int highest = std::max(state.max - std::max(page - 1, 0), state.min);
  return std::clamp(pos, state.min, highest);
}

// A bar that a range change hides leaves its strip to the client area, which must be
// painted there.
void ShowOrHide(HWND hwnd, int bar, bool show) {
  platform::window::Window* window = platform::window::Find(hwnd);
  bool wasShown = window != nullptr && (window->style & StyleOf(bar)) != 0;
  platform::user::SetStyleBits(hwnd, StyleOf(bar), show);
  if (wasShown && !show) InvalidateRect(hwnd, nullptr, TRUE);
}

// The host-frame DC at a window's client origin for its client area and bars (inside
// its frame), as far as its ancestors' client areas let it show; null when it does not
// show.
HDC ClientAndBarsDC(const platform::window::Window& window) {
  if (!platform::window::IsShownOnHost(window)) return nullptr;
  const POINT origin = platform::window::ClientOrigin(window);
  const int frame = platform::window::FrameThickness(window);
  const RECT whole = platform::window::WindowRectOnHost(window);
  const RECT inside{whole.left + frame, whole.top + frame, whole.right - frame, whole.bottom - frame};
  return platform::user::HostFrameDC(window, origin, platform::window::VisibleOnHost(window, inside));
}

void DrawBar(HDC dc, const platform::window::Window& window, int bar) {
  const ScrollBarState& state = bar == SB_VERT ? window.vertical : window.horizontal;
  bool vertical = bar == SB_VERT;
  RECT rect = platform::scroll::BarRect(window, bar);
  int pos = state.tracking ? state.trackPos : state.pos;
  platform::scroll::Part pressed = state.pressedArrow < 0   ? platform::scroll::Part::BackArrow
                                   : state.pressedArrow > 0 ? platform::scroll::Part::ForwardArrow
                                                            : platform::scroll::Part::None;
  platform::scroll::Draw(dc, rect, vertical, platform::scroll::Layout(rect, vertical, state, pos), pressed);
}

}  // namespace

BOOL ShowScrollBar(HWND hwnd, int bar, BOOL show) {
  if (!IsWindow(hwnd)) return FALSE;
  DWORD bits =
      bar == SB_BOTH ? (WS_HSCROLL | WS_VSCROLL) : (bar == SB_HORZ || bar == SB_VERT ? StyleOf(bar) : 0);
  if (bits == 0) return FALSE;
  platform::user::SetStyleBits(hwnd, bits, show != FALSE);
  InvalidateRect(hwnd, nullptr, TRUE);
  platform::user::RedrawScrollBars(hwnd);
  return TRUE;
}

int SetScrollInfo(HWND hwnd, int bar, const SCROLLINFO* info, BOOL redraw) {
  ScrollBarState* state = BarOf(hwnd, bar);
  if (state == nullptr || info == nullptr) return 0;
  if (info->fMask & SIF_RANGE) {
    // Windows refuses an inverted range and keeps the old one.
    if (info->nMin <= info->nMax) {
      state->min = info->nMin;
      state->max = info->nMax;
    }
  }
  if (info->fMask & SIF_PAGE) {
    long long span = static_cast<long long>(state->max) - state->min + 1;
    state->page = static_cast<UINT>(std::min<long long>(info->nPage, span));
  }
  if (info->fMask & SIF_POS) state->pos = info->nPos;
  state->pos = ClampPosition(*state, state->pos);
  int pos = state->pos;
  // A standard bar appears when its range needs it and, unless asked to stay as a
  // disabled bar, disappears when it does not.
  if (info->fMask & (SIF_RANGE | SIF_PAGE)) {
    bool needed = platform::scroll::CanScroll(*state);
    if (needed || !(info->fMask & SIF_DISABLENOSCROLL)) ShowOrHide(hwnd, bar, needed);
  }
  if (redraw) platform::user::RedrawScrollBars(hwnd);
  return pos;
}

BOOL GetScrollInfo(HWND hwnd, int bar, SCROLLINFO* info) {
  ScrollBarState* state = BarOf(hwnd, bar);
  if (state == nullptr || info == nullptr) return FALSE;
  if (info->fMask & SIF_RANGE) {
    info->nMin = state->min;
    info->nMax = state->max;
  }
  if (info->fMask & SIF_PAGE) info->nPage = state->page;
  if (info->fMask & SIF_POS) info->nPos = state->pos;
  if (info->fMask & SIF_TRACKPOS) info->nTrackPos = state->trackPos;
  return TRUE;
}

int SetScrollPos(HWND hwnd, int bar, int pos, BOOL redraw) {
  ScrollBarState* state = BarOf(hwnd, bar);
  if (state == nullptr) return 0;
  int previous = state->pos;
  state->pos = ClampPosition(*state, pos);
  if (redraw) platform::user::RedrawScrollBars(hwnd);
  return previous;
}

int GetScrollPos(HWND hwnd, int bar) {
  ScrollBarState* state = BarOf(hwnd, bar);
  return state == nullptr ? 0 : state->pos;
}

namespace platform::user {

void RedrawScrollBars(HWND hwnd) {
  window::Window* window = window::Find(hwnd);
  if (window == nullptr) return;
  bool horizontal = (window->style & WS_HSCROLL) != 0;
  bool vertical = (window->style & WS_VSCROLL) != 0;
  if (!horizontal && !vertical) return;
  HDC dc = ClientAndBarsDC(*window);
  if (dc == nullptr) return;
  if (horizontal) DrawBar(dc, *window, SB_HORZ);
  if (vertical) DrawBar(dc, *window, SB_VERT);
  if (horizontal && vertical) scroll::DrawCorner(dc, scroll::CornerRect(*window));
  DeleteDC(dc);
}

}  // namespace platform::user
