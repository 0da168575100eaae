#include "platform/scroll_bar.h"

#include <algorithm>

#include "platform/gdi.h"
#include "platform/three_d_look.h"

namespace platform::scroll {
namespace {

constexpr int kArrowLength = SCROLLBAR_THICKNESS;
// A thumb never shrinks below this, however small the page is next to the range.
constexpr int kMinimumThumb = 8;
// Without a page the thumb shows only the position, at a fixed square size.
constexpr int kFixedThumb = SCROLLBAR_THICKNESS;

using three_d::DrawRaisedButton;
using three_d::Fill;
using three_d::kFace;
using three_d::kShadow;
constexpr COLORREF kTrack = RGB(0xE8, 0xE8, 0xE8);
constexpr COLORREF kGlyph = RGB(0x20, 0x20, 0x20);

enum class Direction { Up, Down, Left, Right };

// value * numerator / denominator for non-negative values, rounded half up, with an
// intermediate wide enough for any range of ints.
long long Scale(long long value, long long numerator, long long denominator) {
  auto product = static_cast<unsigned long long>(value) * static_cast<unsigned long long>(numerator);
  return static_cast<long long>((product + static_cast<unsigned long long>(denominator) / 2) /
                                static_cast<unsigned long long>(denominator));
}

long long PageOf(const window::ScrollBarState& state) { return state.page; }
long long RangeOf(const window::ScrollBarState& state) {
  return static_cast<long long>(state.max) - state.min + 1;
}
// How far past min the position can go: a whole page must still fit.
long long Travel(const window::ScrollBarState& state) {
  return RangeOf(state) - std::max<long long>(PageOf(state), 1);
}

int Length(const RECT& r, bool vertical) {
  return std::max(vertical ? r.bottom - r.top : r.right - r.left, 0);
}
int Start(const RECT& r, bool vertical) { return vertical ? r.top : r.left; }

// The piece of the bar from `from` to `to` pixels along its axis.
RECT Span(const RECT& bar, bool vertical, int from, int to) {
  return vertical ? RECT{bar.left, bar.top + from, bar.right, bar.top + to}
                  : RECT{bar.left + from, bar.top, bar.left + to, bar.bottom};
}

int ThumbLength(int track, const window::ScrollBarState& state) {
  if (state.page == 0) return kFixedThumb;
  return std::max(static_cast<int>(Scale(track, PageOf(state), RangeOf(state))), kMinimumThumb);
}

// A held arrow sinks: a grey frame round a flat face.
void DrawPressedButton(HDC dc, const RECT& r) {
  Fill(dc, r, kShadow);
  Fill(dc, RECT{r.left + 1, r.top + 1, r.right - 1, r.bottom - 1}, kFace);
}

// A solid triangle centred on the button, its tip towards `direction`: four rows of
// 1, 3, 5 and 7 pixels on a full-size button, fewer on a squeezed one.
void DrawArrowGlyph(HDC dc, const RECT& button, Direction direction) {
  int side = std::min(button.right - button.left, button.bottom - button.top);
  int rows = std::min(4, (side - 6) / 2);
  if (rows < 1) return;
  int centreX = (button.left + button.right) / 2;
  int centreY = (button.top + button.bottom) / 2;
  bool vertical = direction == Direction::Up || direction == Direction::Down;
  bool tipFirst = direction == Direction::Up || direction == Direction::Left;
  int first = (vertical ? centreY : centreX) - rows / 2;
  for (int i = 0; i < rows; ++i) {
    int half = tipFirst ? i : rows - 1 - i;
    int along = first + i;
    RECT row = vertical ? RECT{centreX - half, along, centreX + half + 1, along + 1}
                        : RECT{along, centreY - half, along + 1, centreY + half + 1};
    Fill(dc, row, kGlyph);
  }
}

// The glyph of a held arrow moves one pixel down and right with the sunk face.
void DrawArrowButton(HDC dc, const RECT& button, Direction direction, bool pressed) {
  if (pressed) {
    DrawPressedButton(dc, button);
    DrawArrowGlyph(dc, window::Offset(button, 1, 1), direction);
  } else {
    DrawRaisedButton(dc, button);
    DrawArrowGlyph(dc, button, direction);
  }
}

}  // namespace

bool CanScroll(const window::ScrollBarState& state) { return Travel(state) > 0; }

Parts Layout(const RECT& bar, bool vertical, const window::ScrollBarState& state, int pos) {
  int length = Length(bar, vertical);
  // The arrows stay square; a bar too short for two shares its length between them.
  int arrow = std::min(kArrowLength, length / 2);
  Parts parts;
  parts.backArrow = Span(bar, vertical, 0, arrow);
  parts.forwardArrow = Span(bar, vertical, length - arrow, length);
  parts.track = Span(bar, vertical, arrow, length - arrow);
  int track = length - 2 * arrow;
  int thumb = ThumbLength(track, state);
  if (!CanScroll(state) || thumb > track) return parts;
  long long offset = std::clamp<long long>(static_cast<long long>(pos) - state.min, 0, Travel(state));
  int start = arrow + static_cast<int>(Scale(offset, track - thumb, Travel(state)));
  parts.thumb = Span(bar, vertical, start, start + thumb);
  return parts;
}

Part PartAt(const Parts& parts, bool vertical, POINT point) {
  if (PtInRect(&parts.backArrow, point)) return Part::BackArrow;
  if (PtInRect(&parts.forwardArrow, point)) return Part::ForwardArrow;
  if (!PtInRect(&parts.track, point) || window::IsEmpty(parts.thumb)) return Part::None;
  int along = vertical ? point.y : point.x;
  if (along < Start(parts.thumb, vertical)) return Part::TrackBack;
  if (along >= Start(parts.thumb, vertical) + Length(parts.thumb, vertical)) return Part::TrackForward;
  return Part::Thumb;
}

int PositionAt(const Parts& parts, bool vertical, const window::ScrollBarState& state, int thumbStart) {
  int free = Length(parts.track, vertical) - Length(parts.thumb, vertical);
  if (window::IsEmpty(parts.thumb) || free <= 0 || !CanScroll(state)) return state.min;
  long long offset = std::clamp(thumbStart, 0, free);
  return static_cast<int>(state.min + Scale(offset, Travel(state), free));
}

RECT BarRect(const window::Window& window, int bar) {
  RECT client = window::ClientRect(window);
  if (bar == SB_VERT) return RECT{client.right, 0, client.right + SCROLLBAR_THICKNESS, client.bottom};
  return RECT{0, client.bottom, client.right, client.bottom + SCROLLBAR_THICKNESS};
}

RECT CornerRect(const window::Window& window) {
  RECT client = window::ClientRect(window);
  return RECT{client.right, client.bottom, client.right + SCROLLBAR_THICKNESS,
              client.bottom + SCROLLBAR_THICKNESS};
}

void Draw(HDC dc, const RECT& bar, bool vertical, const Parts& parts, Part pressed) {
  Fill(dc, bar, kTrack);
  DrawArrowButton(dc, parts.backArrow, vertical ? Direction::Up : Direction::Left,
                  pressed == Part::BackArrow);
  DrawArrowButton(dc, parts.forwardArrow, vertical ? Direction::Down : Direction::Right,
                  pressed == Part::ForwardArrow);
  if (!window::IsEmpty(parts.thumb)) DrawRaisedButton(dc, parts.thumb);
}

void DrawCorner(HDC dc, const RECT& corner) { Fill(dc, corner, kFace); }

}  // namespace platform::scroll
