// The scroll bar gesture: what a left press on a window's standard bar tells it.
//
// A bar never moves itself. It sends its window WM_HSCROLL / WM_VSCROLL with what the
// person asked for, and the window's handler sets the new position, which redraws
// the bar. A press on an arrow asks for a line, on the track beside the thumb for a
// page; holding the button repeats the request after a pause and then steadily, while
// the cursor stays on the pressed part (so paging stops once the thumb reaches the
// cursor). Dragging the thumb reports each new tracked position with SB_THUMBTRACK and
// the last one with SB_THUMBPOSITION on release. Every release ends with SB_ENDSCROLL.
// The bar holds the mouse for the whole gesture: the client area hears none of it.
#include "platform/scroll_bar.h"
#include "platform/user.h"
#include "platform/user_internal.h"
#include "platform/window_tree.h"

namespace {

using platform::scroll::Part;
using platform::scroll::Parts;
using platform::window::Find;
using platform::window::ScrollBarState;
using platform::window::Window;

constexpr UINT kFirstRepeatDelay = 350;
constexpr UINT kRepeatInterval = 50;
constexpr UINT_PTR kRepeatTimer = 1;

struct Gesture {
  HWND owner = nullptr;  // null while there is no gesture
  int bar = SB_HORZ;
  Part part = Part::None;
  POINT cursor{};    // in the owner's coordinates
  int grab = 0;      // the cursor's distance from the thumb's start when it was taken
  int trackPos = 0;  // the position the dragged thumb shows
};

Gesture& Current() {
  static Gesture gesture;
  return gesture;
}

bool IsVertical(int bar) { return bar == SB_VERT; }

ScrollBarState& StateOf(Window& window, int bar) {
  return IsVertical(bar) ? window.vertical : window.horizontal;
}

Parts PartsAt(Window& window, int bar, int pos) {
  return platform::scroll::Layout(platform::scroll::BarRect(window, bar), IsVertical(bar),
                                  StateOf(window, bar), pos);
}

int Along(POINT point, int bar) { return IsVertical(bar) ? point.y : point.x; }
int StartOf(const RECT& r, int bar) { return IsVertical(bar) ? r.top : r.left; }

// The request goes in the low word, a thumb position in the high word (16 bits, as
// the message carries it); lParam is null for a window's standard bar.
void Send(const Gesture& gesture, UINT code, int pos) {
  auto wParam = static_cast<WPARAM>((code & 0xFFFFu) | ((static_cast<DWORD>(pos) & 0xFFFFu) << 16));
  SendMessageA(gesture.owner, IsVertical(gesture.bar) ? WM_VSCROLL : WM_HSCROLL, wParam, 0);
}

UINT StepCode(Part part) {
  switch (part) {
    case Part::BackArrow:
      return SB_LINEUP;
    case Part::ForwardArrow:
      return SB_LINEDOWN;
    case Part::TrackBack:
      return SB_PAGEUP;
    default:
      return SB_PAGEDOWN;
  }
}

void Repeat(HWND hwnd) {
  Gesture& gesture = Current();
  Window* window = Find(hwnd);
  if (window == nullptr || gesture.owner != hwnd) return;
  // After the first pause the requests follow each other quickly.
  platform::user::SetInternalTimer(hwnd, kRepeatTimer, kRepeatInterval, Repeat);
  Parts parts = PartsAt(*window, gesture.bar, StateOf(*window, gesture.bar).pos);
  if (platform::scroll::PartAt(parts, IsVertical(gesture.bar), gesture.cursor) == gesture.part) {
    Send(gesture, StepCode(gesture.part), 0);
  }
}

void TrackThumb(Gesture& gesture, Window& window) {
  ScrollBarState& state = StateOf(window, gesture.bar);
  Parts parts = PartsAt(window, gesture.bar, gesture.trackPos);
  int thumbStart = Along(gesture.cursor, gesture.bar) - gesture.grab - StartOf(parts.track, gesture.bar);
  int pos = platform::scroll::PositionAt(parts, IsVertical(gesture.bar), state, thumbStart);
  if (pos == gesture.trackPos) return;
  gesture.trackPos = pos;
  state.trackPos = pos;
  platform::user::RedrawScrollBars(gesture.owner);
  Send(gesture, SB_THUMBTRACK, pos);
}

// A held arrow looks pressed while the cursor is on it.
void ShowHeldArrow(const Gesture& gesture, Window& window, bool held) {
  ScrollBarState& state = StateOf(window, gesture.bar);
  int arrow = 0;
  Parts parts = PartsAt(window, gesture.bar, state.pos);
  if (held && platform::scroll::PartAt(parts, IsVertical(gesture.bar), gesture.cursor) == gesture.part) {
    if (gesture.part == Part::BackArrow) arrow = -1;
    if (gesture.part == Part::ForwardArrow) arrow = 1;
  }
  if (state.pressedArrow == arrow) return;
  state.pressedArrow = arrow;
  platform::user::RedrawScrollBars(gesture.owner);
}

// The gesture ends before its last messages go out, so their handlers see no gesture;
// the thumb goes back to the position until the handler sets the final one.
void Release() {
  Gesture gesture = Current();
  Current() = Gesture{};
  platform::user::KillInternalTimer(gesture.owner, kRepeatTimer);
  if (Window* window = Find(gesture.owner)) ShowHeldArrow(gesture, *window, false);
  if (gesture.part == Part::Thumb) {
    if (Window* window = Find(gesture.owner)) StateOf(*window, gesture.bar).tracking = false;
    platform::user::RedrawScrollBars(gesture.owner);
    Send(gesture, SB_THUMBPOSITION, gesture.trackPos);
  }
  Send(gesture, SB_ENDSCROLL, 0);
}

}  // namespace

namespace platform::user {

void PressScrollBar(HWND hwnd, int bar, POINT point) {
  Window* window = Find(hwnd);
  if (window == nullptr || Current().owner != nullptr) return;
  if (!(window->style & (IsVertical(bar) ? WS_VSCROLL : WS_HSCROLL))) return;
  ScrollBarState& state = StateOf(*window, bar);
  // A bar whose range fits in one page is disabled.
  if (!scroll::CanScroll(state)) return;
  Parts parts = PartsAt(*window, bar, state.pos);
  Part part = scroll::PartAt(parts, IsVertical(bar), point);
  if (part == Part::None) return;
  Gesture& gesture = Current();
  gesture = Gesture{hwnd, bar, part, point, 0, state.pos};
  if (part == Part::Thumb) {
    gesture.grab = Along(point, bar) - StartOf(parts.thumb, bar);
    state.trackPos = state.pos;
    state.tracking = true;
    return;
  }
  ShowHeldArrow(gesture, *window, true);
  SetInternalTimer(hwnd, kRepeatTimer, kFirstRepeatDelay, Repeat);
  Send(gesture, StepCode(part), 0);
}

bool ScrollBarMouse(UINT message, POINT point) {
  Gesture& gesture = Current();
  if (gesture.owner == nullptr) return false;
  Window* window = Find(gesture.owner);
  // A window destroyed in the middle of a gesture takes the gesture with it.
  if (window == nullptr) {
    gesture = Gesture{};
    return false;
  }
  ScreenToClient(gesture.owner, &point);
  gesture.cursor = point;
  if (message == WM_MOUSEMOVE && gesture.part == Part::Thumb) TrackThumb(gesture, *window);
  if (message == WM_MOUSEMOVE) ShowHeldArrow(gesture, *window, true);
  if (message == WM_LBUTTONUP) Release();
  return true;
}

}  // namespace platform::user
