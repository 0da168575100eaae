// The standard scroll bars of a window: range, page and position. A shown bar takes
// SCROLLBAR_THICKNESS pixels from the client area (right for vertical, bottom for
// horizontal); a change of the client size sends WM_SIZE as Windows does.
#include <algorithm>

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

// A bar is needed while the range is larger than one page.
bool IsNeeded(const ScrollBarState& state) {
  int page = static_cast<int>(std::min<UINT>(state.page, 0x7FFFFFFF));
  return state.min < state.max - std::max(page - 1, 0);
}

}  // namespace

BOOL ShowScrollBar(HWND hwnd, int bar, BOOL show) {
  if (!IsWindow(hwnd)) return FALSE;
  DWORD bits =
      bar == SB_BOTH ? (WS_HSCROLL | WS_VSCROLL) : (bar == SB_HORZ || bar == SB_VERT ? StyleOf(bar) : 0);
  if (bits == 0) return FALSE;
  platform::user::SetStyleBits(hwnd, bits, show != FALSE);
  InvalidateRect(hwnd, nullptr, TRUE);
  return TRUE;
}

int SetScrollInfo(HWND hwnd, int bar, const SCROLLINFO* info, BOOL /*redraw*/) {
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
    bool needed = IsNeeded(*state);
    if (needed || !(info->fMask & SIF_DISABLENOSCROLL))
      platform::user::SetStyleBits(hwnd, StyleOf(bar), needed);
  }
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

int SetScrollPos(HWND hwnd, int bar, int pos, BOOL /*redraw*/) {
  ScrollBarState* state = BarOf(hwnd, bar);
  if (state == nullptr) return 0;
  int previous = state->pos;
  state->pos = ClampPosition(*state, pos);
  return previous;
}

int GetScrollPos(HWND hwnd, int bar) {
  ScrollBarState* state = BarOf(hwnd, bar);
  return state == nullptr ? 0 : state->pos;
}
